// Visit marks and the pointer record: how objects are stored once and loaded through the
// class registry.
#include <memory>
#include <string>
#include <typeinfo>

#include <foundation/archive.h>
#include <foundation/archive_state.h>

using xn_archive_detail::LoadedObject;
using xn_archive_detail::State;
using xn_archive_detail::StoredObject;

using xn_archive_detail::widen;

namespace {

// Wire tags of the pointer record.
constexpr unsigned char kNullTag = 0;
constexpr unsigned char kObjectTag = 1;
constexpr unsigned char kReferenceTag = 2;
// Back-references carry 32-bit object numbers.
constexpr std::size_t kMaxObjectId = 0xFFFFFFFFu;

std::wstring classOf(const xcPersistent& object) {
    return widen(xc_Instantiator::stableName(typeid(object)));
}

// One open object record: bounds the nesting (and so the stack) and collects the depth of the
// objects that the record's object refers to.
class OpenRecord {
  public:
    explicit OpenRecord(State& st) : st_(st) {
        if (st_.frames.size() >= static_cast<std::size_t>(xcArchive::kMaxObjectDepth))
            throw xcArchive::BadData(L"archive objects nested more than " +
                                     std::to_wstring(xcArchive::kMaxObjectDepth) + L" deep");
        st_.frames.push_back({st_.markLog.size(), 0});
    }
    ~OpenRecord() {
        st_.markLog.resize(st_.frames.back().firstMark);
        st_.frames.pop_back();
    }
    OpenRecord(const OpenRecord&) = delete;
    OpenRecord& operator=(const OpenRecord&) = delete;

    /// The depth of this record's object: one more than the deepest object it refers to.
    /// Throws BadData beyond kMaxObjectDepth.
    int depth() const {
        const int d = st_.frames.back().childDepth + 1;
        if (d > xcArchive::kMaxObjectDepth)
            throw xcArchive::BadData(L"chain of archive objects longer than " +
                                     std::to_wstring(xcArchive::kMaxObjectDepth));
        return d;
    }
    /// Removes the visit marks set inside this record: the object leaves the archive's care, and
    /// its address may later hold another object.
    void forgetMarks() {
        for (std::size_t i = st_.frames.back().firstMark; i < st_.markLog.size(); ++i)
            st_.visited.erase(st_.markLog[i]);
    }

  private:
    State& st_;
};

// The class name of an object record: a 32-bit length (1 to kMaxClassNameLength) and the bytes.
void transferClassName(xcArchive& ar, std::string& name) {
    unsigned long length = static_cast<unsigned long>(name.size());
    ar || length;
    if (length == 0 || length > xcArchive::kMaxClassNameLength)
        throw xcArchive::BadData(L"invalid class name length " + std::to_wstring(length) +
                                 L" in archive");
    ar.checkCount(length, 1);
    if (ar.isLoading())
        name.assign(length, '\0');
    ar.transferBytes(&name[0], length);
}

std::string registeredNameOf(const xcPersistent& object) {
    std::string name = xc_Instantiator::registeredName(typeid(object));
    if (name.empty())
        throw xcArchive::UnregisteredClass(
            L"class " + classOf(object) +
            L" is not registered for archives (no xc_Instantiator, or its "
            L"name is taken by another class)");
    if (name.size() > xcArchive::kMaxClassNameLength)
        throw xcArchive::ValueOutOfRange(L"class name " + widen(name) +
                                         L" is too long for an archive");
    return name;
}

// Writes a back-reference to a counted object already written; returns its depth.
int storeReference(xcArchive& ar, const StoredObject& stored, const xcPersistent& object) {
    if (!stored.complete)
        throw xcArchive::BadReference(L"cannot store a cycle: an object of class " +
                                      classOf(object) + L" refers back to itself");
    unsigned char tag = kReferenceTag;
    unsigned long id = stored.id;
    ar || tag || id;
    return stored.depth;
}

// Writes an object record; returns the object's depth.
int storeObject(xcArchive& ar, State& st, const xcPersistent& object, const xcRepBase* counted) {
    std::string name = registeredNameOf(object);
    const void* key = dynamic_cast<const void*>(&object);
    OpenRecord record(st);
    unsigned char tag = kObjectTag;
    ar || tag;
    transferClassName(ar, name);
    if (counted) {
        if (st.stored.size() > kMaxObjectId)
            throw xcArchive::ValueOutOfRange(L"too many objects for one archive");
        const auto id = static_cast<std::uint32_t>(st.stored.size());
        st.stored.emplace(key, StoredObject{id, false, 0});
        // Keep a shared object alive while its address identifies it in this archive.
        if (counted->refCount() > 0) {
            st.held.push_back(counted);
            counted->addRef();
        }
    }
    const_cast<xcPersistent&>(object).dispatchSerialize(ar);
    const int depth = record.depth();
    if (counted) {
        StoredObject& entry = st.stored.at(key);
        entry.complete = true;
        entry.depth = depth;
    } else {
        record.forgetMarks();
    }
    return depth;
}

void storePointer(xcArchive& ar, State& st, const xcPersistent* object) {
    if (!object) {
        unsigned char tag = kNullTag;
        ar || tag;
        return;
    }
    const xcRepBase* counted = dynamic_cast<const xcRepBase*>(object);
    if (counted) {
        const auto found = st.stored.find(dynamic_cast<const void*>(object));
        if (found != st.stored.end()) {
            st.noteReferent(storeReference(ar, found->second, *object));
            return;
        }
    }
    st.noteReferent(storeObject(ar, st, *object, counted));
}

// Reads a back-reference; returns the object.
xcPersistent* loadReference(xcArchive& ar, State& st) {
    unsigned long id = 0;
    ar || id;
    if (id >= st.loaded.size())
        throw xcArchive::BadReference(L"reference to object " + std::to_wstring(id) + L" of " +
                                      std::to_wstring(st.loaded.size()) + L" loaded");
    const LoadedObject& target = st.loaded[id];
    if (!target.complete)
        throw xcArchive::BadReference(L"reference to object " + std::to_wstring(id) +
                                      L", whose record is not complete");
    st.noteReferent(target.depth);
    return target.object;
}

// Loads the record of an object just created by its factory; returns the object, which the
// archive keeps a reference to (counted) or hands over to the caller (no count).
xcPersistent* loadCreated(xcArchive& ar, State& st, std::unique_ptr<xcPersistent> fresh,
                          OpenRecord& record) {
    const xcRepBase* counted = dynamic_cast<const xcRepBase*>(fresh.get());
    if (!counted) {
        fresh->dispatchSerialize(ar);
        fresh->reInit();
        record.depth();  // may throw: the object is still ours to delete
        record.forgetMarks();
        return fresh.release();
    }
    st.loaded.push_back({nullptr, nullptr, false, 0});
    const std::size_t index = st.loaded.size() - 1;
    counted->addRef();
    xcPersistent* object = fresh.release();
    st.loaded[index] = {counted, object, false, 0};
    object->dispatchSerialize(ar);
    object->reInit();
    st.loaded[index].depth = record.depth();
    st.loaded[index].complete = true;
    return object;
}

// Reads an object record; returns the new object.
xcPersistent* loadObject(xcArchive& ar, State& st) {
    int depth = 0;
    xcPersistent* object = nullptr;
    {
        OpenRecord record(st);
        std::string name;
        transferClassName(ar, name);
        const xc_Instantiator::MakeFunction make = xc_Instantiator::lookup(name);
        if (!make)
            throw xcArchive::UnknownClass(L"unknown class \"" + widen(name) + L"\" in archive");
        std::unique_ptr<xcPersistent> fresh(make());
        if (!fresh)
            throw xcArchive::UnknownClass(L"the factory of class \"" + widen(name) +
                                          L"\" made no object");
        object = loadCreated(ar, st, std::move(fresh), record);
        depth = record.depth();
    }
    st.noteReferent(depth);
    return object;
}

xcPersistent* loadPointer(xcArchive& ar, State& st) {
    unsigned char tag = kNullTag;
    ar || tag;
    switch (tag) {
        case kNullTag:
            return nullptr;
        case kReferenceTag:
            return loadReference(ar, st);
        case kObjectTag:
            return loadObject(ar, st);
        default:
            throw xcArchive::BadData(L"invalid pointer tag " + std::to_wstring(tag) +
                                     L" in archive");
    }
}

}  // namespace

xn_archive_detail::State::~State() {
    for (const xcRepBase* r : held)
        r->release();
    // Newest first: an object is then never the last holder of a long chain of older objects, so
    // no destructor recursion is deeper than the graph's nesting.
    for (auto it = loaded.rbegin(); it != loaded.rend(); ++it)
        if (it->counted)
            it->counted->release();
}

bool xcPersistent::haveVisited(xcArchive& ar, const void* address, std::size_t size) {
    return ar.state_->visited.count({address, size}) != 0;
}

void xcPersistent::setVisited(xcArchive& ar, const void* address, std::size_t size) {
    State& st = *ar.state_;
    if (st.visited.insert({address, size}).second && !st.frames.empty())
        st.markLog.push_back({address, size});
}

void xcPersistent::serializePointer(xcArchive& ar, const xcPersistent* object,
                                    xcPersistent*& pointer) {
    State& st = *ar.state_;
    if (ar.isStoring()) {
        storePointer(ar, st, object);
        return;
    }
    pointer = nullptr;
    pointer = loadPointer(ar, st);
}

namespace {
// Deletes a loaded object that the caller will not keep, unless the archive holds it.
void discard(xcPersistent* p) {
    if (!dynamic_cast<xcRepBase*>(p))
        delete p;
}
}  // namespace

xcPersistent* xn_archive_detail::loadReferent(xcArchive& ar, bool (*isT)(xcPersistent*)) {
    xcPersistent* p = nullptr;
    xcPersistent::serializePointer(ar, nullptr, p);
    if (!p || isT(p))
        return p;
    discard(p);
    return nullptr;
}

xcPersistent* xn_archive_detail::loadOwned(xcArchive& ar, bool (*isT)(xcPersistent*)) {
    xcPersistent* p = nullptr;
    xcPersistent::serializePointer(ar, nullptr, p);
    if (!p || (isT(p) && !dynamic_cast<xcRepBase*>(p)))
        return p;
    discard(p);
    return nullptr;
}
