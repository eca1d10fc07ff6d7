#ifndef FOUNDATION_PERSISTENT_H
#define FOUNDATION_PERSISTENT_H

#include <cstddef>
#include <string>
#include <typeinfo>

#include <foundation/export.h>

class xcArchive;

/// The virtual base of every class that can be stored in an archive. It carries a change count
/// (bumped by mutating()) and the hooks through which archives store and load objects.
class FOUNDATION_API xcPersistent {
public:
    virtual ~xcPersistent();

    /// How many times mutating() was called on this object.
    unsigned long changeCount() const { return changeCount_; }
    /// Records that the object changed (increments changeCount()).
    void mutating() { ++changeCount_; }

    /// Stores this part of the object to `ar`, or loads it from `ar`. The record of xcPersistent
    /// itself is one version byte, 0; any other byte on loading throws xcArchive::UnknownVersion
    /// naming "xcPersistent". A part already visited in this archive is skipped.
    virtual void dispatchSerialize(xcArchive& ar);
    /// Called by the archive after an object created by it has been completely loaded. The
    /// default does nothing.
    virtual void reInit();
    /// Loads this object's record from `ar` in place (dispatchSerialize on a loading archive).
    virtual void loadSimple(xcArchive& ar);

    /// Whether the part at `address` of `size` bytes was already marked visited in `ar`.
    static bool haveVisited(xcArchive& ar, const void* address, std::size_t size);
    /// Marks the part at `address` of `size` bytes visited in `ar`.
    static void setVisited(xcArchive& ar, const void* address, std::size_t size);
    /// The pointer record. Storing: writes `object` (null allowed) once per archive; a later
    /// reference to the same object writes a back-reference. Loading: reads such a record into
    /// `pointer`, creating the object through the class registry on its first occurrence and
    /// referring back to it afterwards. See xcArchive for ownership of loaded objects.
    static void serializePointer(xcArchive& ar, const xcPersistent* object, xcPersistent*& pointer);

protected:
    xcPersistent() = default;
    /// A copy is a new object: its change count starts at 0.
    xcPersistent(const xcPersistent&) {}
    /// Assignment leaves the change count alone.
    xcPersistent& operator=(const xcPersistent&) { return *this; }

private:
    unsigned long changeCount_ = 0;
};

/// Registers a persistent class with the archive loader under a stable name derived from its
/// type: the demangled C++ name with any "class "/"struct " prefixes and all blanks removed (for
/// example "xcContourDefs::EmptyContour" or "xcContourT<xcEdgelet>"). Archives store that name,
/// so they do not depend on a compiler's mangling. Construct one static instance per class.
class FOUNDATION_API xc_Instantiator {
public:
    using MakeFunction = xcPersistent* (*)();
    /// Registers `type` with its factory. Registering one name twice keeps the first factory.
    xc_Instantiator(const std::type_info& type, MakeFunction make);

    /// The stable name of `type`.
    static std::string stableName(const std::type_info& type);
    /// The factory registered under `name`, or null.
    static MakeFunction lookup(const std::string& name);
    /// The registered name of `type`, or an empty string when it was not registered.
    static std::string registeredName(const std::type_info& type);
};

#endif
