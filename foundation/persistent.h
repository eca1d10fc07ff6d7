#ifndef FOUNDATION_PERSISTENT_H
#define FOUNDATION_PERSISTENT_H

#include <cstddef>
#include <string>
#include <typeinfo>

#include <foundation/export.h>

class xcArchive;

/// The virtual base of every class that can be stored in an archive. It carries a change count
/// (bumped by mutating()) and the hooks through which archives store and load objects.
///
/// Each level of a persistent class hierarchy writes its own record: a version byte, then its
/// fields (a derived level passes its base levels through their dispatchSerialize). dispatchPart()
/// implements that pattern once; see xcArchive for the wire format and for ownership.
class FOUNDATION_API xcPersistent {
  public:
    virtual ~xcPersistent();

    /// How many times mutating() was called on this object.
    unsigned long changeCount() const { return changeCount_; }
    /// Records that the object changed (increments changeCount()). Const because filling a
    /// cache from a const query may count as a change; the count is bookkeeping, not state.
    void mutating() const { ++changeCount_; }

    /// Stores this part of the object to `ar`, or loads it from `ar`. The record of xcPersistent
    /// itself is one version byte, 0; any other byte on loading throws xcArchive::UnknownVersion
    /// naming "xcPersistent". A part already visited in this archive is skipped.
    virtual void dispatchSerialize(xcArchive& ar);
    /// Called by the archive after an object that it created has been completely loaded. The
    /// default does nothing.
    virtual void reInit();
    /// Loads this object's record from `ar` in place (dispatchSerialize on a loading archive;
    /// does nothing on a storing one).
    virtual void loadSimple(xcArchive& ar);

    /// Whether the part at `address` of `size` bytes was already marked visited in `ar`.
    static bool haveVisited(xcArchive& ar, const void* address, std::size_t size);
    /// Marks the part at `address` of `size` bytes visited in `ar`.
    static void setVisited(xcArchive& ar, const void* address, std::size_t size);
    /// The pointer record. Storing: writes `object` (null allowed); a counted object (one with
    /// xcRepBase) is written once per archive and later references to it write a back-reference,
    /// while an object without a count is written in full at every reference. Loading: reads such
    /// a record into `pointer` (`object` is ignored), creating the object through the class
    /// registry on its first occurrence and referring back to it afterwards. Throws the archive
    /// errors of xcArchive. See xcArchive for who owns a loaded object.
    static void serializePointer(xcArchive& ar, const xcPersistent* object, xcPersistent*& pointer);

    /// Throws xcArchive::UnknownVersion(source, line) when `version` is above `newest`.
    static void checkVersion(unsigned char version, unsigned char newest, const std::string& source,
                             long line);

  protected:
    xcPersistent() = default;
    /// A copy is a new object: its change count starts at 0.
    xcPersistent(const xcPersistent&) {}
    /// Assignment leaves the change count alone.
    xcPersistent& operator=(const xcPersistent&) { return *this; }

    /// The record of one class level `Part` of this object: returns at once when the part (its
    /// address as a Part and sizeof(Part)) was already visited in `ar`; otherwise passes a
    /// version byte (writing `currentVersion`, or reading the stored one), calls `body(version)`
    /// to transfer the level's fields, and marks the part visited.
    template <class Part, class Body>
    static void dispatchPart(xcArchive& ar, const Part* part, unsigned char currentVersion,
                             Body&& body) {
        if (haveVisited(ar, part, sizeof(Part)))
            return;
        body(transferVersion(ar, currentVersion));
        setVisited(ar, part, sizeof(Part));
    }
    /// Storing: writes `currentVersion` and returns it. Loading: returns the stored version byte.
    static unsigned char transferVersion(xcArchive& ar, unsigned char currentVersion);

  private:
    mutable unsigned long changeCount_ = 0;
};

/// Registers a persistent class with the archive loader under a stable name derived from its
/// type (see stableName()), so that archives do not depend on a compiler's mangling. Construct
/// one static instance per class; its destructor removes the registration again (so a library
/// that is unloaded takes its classes with it).
///
/// Two different types with the same stable name (for example two classes called Foo in unnamed
/// namespaces of different files) cannot both be registered: the first keeps the name, and the
/// second counts as unregistered, so storing it throws xcArchive::UnregisteredClass rather than
/// writing a record that would load as the other class.
class FOUNDATION_API xc_Instantiator {
  public:
    using MakeFunction = xcPersistent* (*)();
    /// Registers `type` with its factory, which returns a new object in its default state.
    xc_Instantiator(const std::type_info& type, MakeFunction make);
    ~xc_Instantiator();
    xc_Instantiator(const xc_Instantiator&) = delete;
    xc_Instantiator& operator=(const xc_Instantiator&) = delete;

    /// The stable name of `type`: stableNameFrom() applied to its demangled name.
    static std::string stableName(const std::type_info& type);
    /// The stable form of a demangled type name: the keywords class, struct and enum removed,
    /// blanks kept only between two identifier characters ("unsigned long"), and the unnamed
    /// namespace spelled "(anonymous namespace)" whatever the compiler calls it. Both
    /// "class xcContourT<class xcEdgelet>" and "xcContourT<xcEdgelet>" give
    /// "xcContourT<xcEdgelet>"; "A<B<int> >" gives "A<B<int>>".
    static std::string stableNameFrom(const std::string& demangled);
    /// The factory registered under `name`, or null.
    static MakeFunction lookup(const std::string& name);
    /// The name under which `type` is registered, or an empty string when it is not.
    static std::string registeredName(const std::type_info& type);

  private:
    const std::type_info* type_;
    std::string name_;
    bool owner_;  // false when the name was already taken by another type
};

#endif
