#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/archive.h>
#include <foundation/xform.h>

#include "archive_support.h"

// Test-only persistent classes, in a named namespace so that their registered names are unique
// in the test program.
namespace persistent_test {

// An exception (persistent, not counted) that counts its live instances.
class Fault : public xcExceptionT<Fault, 0x7E570001> {
  public:
    static int live;
    explicit Fault(const std::wstring& message = std::wstring()) : xcExceptionT(message) { ++live; }
    Fault(const Fault& other) : xcPersistent(other), xcExceptionT(other) { ++live; }
    ~Fault() override { --live; }
};
int Fault::live = 0;

// A counted node of a graph: a label, a name, points, children shared by handle, a transform,
// and an exception it owns through a plain pointer.
class Node : public virtual xcPersistent, public virtual xcRepBase {
  public:
    static int live;
    unsigned long label = 0;
    std::wstring name;
    std::vector<xcVector<2>> points;
    std::vector<xcPtrHandle_const<Node>> children;
    xcPtrHandle_const<xc2XformBase> xform;
    std::unique_ptr<Fault> fault;

    // The largest capacity of a children vector seen when a node went.
    static std::size_t maxChildrenCapacity;

    Node() { ++live; }
    explicit Node(unsigned long l) : label(l) { ++live; }
    ~Node() override {
        --live;
        if (children.capacity() > maxChildrenCapacity)
            maxChildrenCapacity = children.capacity();
    }

    void dispatchSerialize(xcArchive& ar) override {
        dispatchPart(ar, this, 0, [&](unsigned char version) {
            checkVersion(version, 0, "persistent_test::Node", 17);
            xcPersistent::dispatchSerialize(ar);
            ar || label || name || points || children || xform || fault;
        });
    }
    static xcPersistent* make() { return new Node(); }
};
int Node::live = 0;
std::size_t Node::maxChildrenCapacity = 0;

// Another counted class, for referents of the wrong class.
class Other : public virtual xcPersistent, public virtual xcRepBase {
  public:
    static int live;
    double value = 0.0;
    Other() { ++live; }
    Other(const Other& o) : xcPersistent(o), xcRepBase(o), value(o.value) { ++live; }
    ~Other() override { --live; }
    void dispatchSerialize(xcArchive& ar) override {
        dispatchPart(ar, this, 0, [&](unsigned char version) {
            checkVersion(version, 0, "persistent_test::Other", 0);
            xcPersistent::dispatchSerialize(ar);
            ar || value;
        });
    }
    static xcPersistent* make() { return new Other(); }
};
int Other::live = 0;

// A persistent class without a count that refers to a node.
class Carrier : public virtual xcPersistent {
  public:
    static int live;
    xcPtrHandle_const<Node> node;
    Carrier() { ++live; }
    Carrier(const Carrier&) = delete;
    ~Carrier() override { --live; }
    void dispatchSerialize(xcArchive& ar) override {
        dispatchPart(ar, this, 0, [&](unsigned char version) {
            checkVersion(version, 0, "persistent_test::Carrier", 0);
            xcPersistent::dispatchSerialize(ar);
            ar || node;
        });
    }
    static xcPersistent* make() { return new Carrier(); }
};
int Carrier::live = 0;

// A class template, to check the registered name of an instantiation.
template <class T>
class Box : public virtual xcPersistent, public virtual xcRepBase {
  public:
    static xcPersistent* make() { return new Box(); }
};

// A diamond: two levels share one virtual base level, which must be written once.
class Part : public virtual xcPersistent {
  public:
    long value = 0;
    void dispatchSerialize(xcArchive& ar) override {
        dispatchPart(ar, this, 3, [&](unsigned char) { ar || value; });
    }
};
class Left : public virtual Part {
  public:
    unsigned char l = 0;
    void dispatchSerialize(xcArchive& ar) override {
        dispatchPart(ar, this, 1, [&](unsigned char) {
            Part::dispatchSerialize(ar);
            ar || l;
        });
    }
};
class Right : public virtual Part {
  public:
    unsigned char r = 0;
    void dispatchSerialize(xcArchive& ar) override {
        dispatchPart(ar, this, 2, [&](unsigned char) {
            Part::dispatchSerialize(ar);
            ar || r;
        });
    }
};
class Bottom : public Left, public Right {
  public:
    void dispatchSerialize(xcArchive& ar) override {
        Left::dispatchSerialize(ar);
        Right::dispatchSerialize(ar);
    }
};

const xc_Instantiator kFault(typeid(Fault), &Fault::make);
const xc_Instantiator kNode(typeid(Node), &Node::make);
const xc_Instantiator kOther(typeid(Other), &Other::make);
const xc_Instantiator kCarrier(typeid(Carrier), &Carrier::make);
const xc_Instantiator kBox(typeid(Box<Node>), &Box<Node>::make);

}  // namespace persistent_test

namespace {

using persistent_test::Carrier;
using persistent_test::Fault;
using persistent_test::Node;
using persistent_test::Other;
using Bytes = std::vector<unsigned char>;
using NodeHandle = xcPtrHandle<Node>;
using ConstNode = xcPtrHandle_const<Node>;

const std::string kNodeName = "persistent_test::Node";
const std::string kOtherName = "persistent_test::Other";
const std::string kFaultName = "persistent_test::Fault";
constexpr long kFirstArchiveError = xnErrorNumber::ArchiveUnknownVersion;
constexpr long kLastArchiveError = xnErrorNumber::ArchiveUnregisteredClass;

// Every test starts and must end without live test objects.
class Persistence : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(Node::live + Other::live + Fault::live + Carrier::live, 0); }
    void TearDown() override {
        EXPECT_EQ(Node::live, 0);
        EXPECT_EQ(Other::live, 0);
        EXPECT_EQ(Fault::live, 0);
        EXPECT_EQ(Carrier::live, 0);
    }
};

template <class H>
Bytes store(H handle) {
    xcMemoryArchive ar;
    ar || handle;
    return ar.bytes();
}

template <class H>
H load(const Bytes& bytes) {
    xcMemoryArchive ar(bytes);
    H h;
    ar || h;
    EXPECT_EQ(ar.bytesLeft(), 0u);
    return h;
}

// The bytes of a Node record by hand, up to its children count; nodeEnd() closes it.
wire::Bytes& nodeBegin(wire::Bytes& b, std::uint32_t label, std::uint32_t children) {
    b.object(kNodeName).u8(0).u8(0).u32(label).str("").vec(0).vec(children);
    return b;
}
wire::Bytes& nodeEnd(wire::Bytes& b) {
    return b.null().null();
}  // no transform, no fault
wire::Bytes& leaf(wire::Bytes& b, std::uint32_t label) {
    return nodeEnd(nodeBegin(b, label, 0));
}

// A graph with sharing, a transform, strings, points and an owned exception.
NodeHandle sampleGraph() {
    NodeHandle shared(new Node(2));
    shared->name = L"shared \u00E9";
    shared->points = {{1, 2}, {3, 4}};
    NodeHandle middle(new Node(3));
    middle->children = {shared};
    middle->xform = xcPtrHandle_const<xc2XformBase>(
        new xc2XformLinear(xcXform<2>(xcMatrix<2>(1, 2, 3, 4), xcVector<2>(5, 6))));
    middle->fault.reset(new Fault(L"kept"));
    NodeHandle root(new Node(1));
    root->children = {shared, middle, shared, ConstNode()};
    return root;
}

bool isArchiveError(const xcException& e) {
    return e.errorNumber() >= kFirstArchiveError && e.errorNumber() <= kLastArchiveError;
}

// ---- the xcPersistent record and visit marks ----

TEST_F(Persistence, PersistentRecordIsOneVersionByteZero) {
    Other o;
    xcMemoryArchive ar;
    o.xcPersistent::dispatchSerialize(ar);
    EXPECT_EQ(Bytes(ar.bytes().begin() + 8, ar.bytes().end()), (Bytes{0}));
}

TEST_F(Persistence, PersistentRecordWithOtherVersionIsUnknownVersion) {
    wire::Bytes b;
    b.header().u8(1);
    xcMemoryArchive ar(b.data());
    Other o;
    const auto e =
        support::caught<xcArchive::UnknownVersion>([&] { o.xcPersistent::dispatchSerialize(ar); });
    ASSERT_TRUE(e);
    EXPECT_EQ(e->source(), "xcPersistent");
    EXPECT_EQ(e->line(), 0);
}

TEST_F(Persistence, VisitMarksArePerAddressSizeAndArchive) {
    xcMemoryArchive a;
    xcMemoryArchive b;
    int x = 0;
    EXPECT_FALSE(xcPersistent::haveVisited(a, &x, sizeof x));
    xcPersistent::setVisited(a, &x, sizeof x);
    EXPECT_TRUE(xcPersistent::haveVisited(a, &x, sizeof x));
    EXPECT_FALSE(xcPersistent::haveVisited(a, &x, sizeof x + 1));
    EXPECT_FALSE(xcPersistent::haveVisited(a, &x + 1, sizeof x));
    EXPECT_FALSE(xcPersistent::haveVisited(b, &x, sizeof x));
}

TEST_F(Persistence, APartIsWrittenOncePerArchive) {
    Other o;
    o.value = 2.0;
    xcMemoryArchive ar;
    o.dispatchSerialize(ar);
    o.dispatchSerialize(ar);
    // Other's version 0, xcPersistent's version 0, the double; once.
    EXPECT_EQ(Bytes(ar.bytes().begin() + 8, ar.bytes().end()),
              wire::Bytes().u8(0).u8(0).f64(2.0).data());
}

TEST_F(Persistence, DiamondWritesTheSharedLevelOnce) {
    persistent_test::Bottom b;
    b.value = -1;
    b.l = 10;
    b.r = 20;
    xcMemoryArchive out;
    b.dispatchSerialize(out);
    // Left: version 1, Part (version 3, value), l; Right: version 2, r (Part already visited).
    const Bytes expected = wire::Bytes().u8(1).u8(3).u32(0xFFFFFFFFu).u8(10).u8(2).u8(20).data();
    EXPECT_EQ(Bytes(out.bytes().begin() + 8, out.bytes().end()), expected);

    persistent_test::Bottom back;
    xcMemoryArchive in(out.bytes());
    back.loadSimple(in);
    EXPECT_EQ(back.value, -1);
    EXPECT_EQ(back.l, 10);
    EXPECT_EQ(back.r, 20);
    EXPECT_EQ(in.bytesLeft(), 0u);
}

TEST_F(Persistence, LoadSimpleOnAStoringArchiveDoesNothing) {
    Other o;
    xcMemoryArchive ar;
    o.loadSimple(ar);
    EXPECT_EQ(ar.bytes().size(), 8u);
}

TEST_F(Persistence, ChangeCountCountsMutations) {
    Other o;
    EXPECT_EQ(o.changeCount(), 0u);
    o.mutating();
    o.mutating();
    EXPECT_EQ(o.changeCount(), 2u);
    Other copy(o);
    EXPECT_EQ(copy.changeCount(), 0u);
}

// ---- the registry ----

TEST(Instantiator, StableNamesAreDemangledAndCompact) {
    EXPECT_EQ(xc_Instantiator::stableName(typeid(xc2XformLinear)), "xc2XformLinear");
    EXPECT_EQ(xc_Instantiator::stableName(typeid(Node)), kNodeName);
    EXPECT_EQ(xc_Instantiator::stableName(typeid(persistent_test::Box<Node>)),
              "persistent_test::Box<persistent_test::Node>");
    EXPECT_EQ(xc_Instantiator::stableName(typeid(xcArchive::UnknownVersion)),
              "xcArchive::UnknownVersion");
}

TEST(Instantiator, StableNameFromAnyCompilersSpelling) {
    const std::pair<const char*, const char*> cases[] = {
        {"class xcContourT<class xcEdgelet>", "xcContourT<xcEdgelet>"},
        {"xcContourT<xcEdgelet>", "xcContourT<xcEdgelet>"},
        {"class xcContourDefs::EmptyContour", "xcContourDefs::EmptyContour"},
        {"struct A<struct B<int> >", "A<B<int>>"},
        {"A<B<int> >", "A<B<int>>"},
        {"Pair<int, unsigned long>", "Pair<int,unsigned long>"},
        {"class Pair<int,unsigned long>", "Pair<int,unsigned long>"},
        {"class Subclass", "Subclass"},
        {"enum E", "E"},
        {"class `anonymous namespace'::Foo", "(anonymous namespace)::Foo"},
        {"(anonymous namespace)::Foo", "(anonymous namespace)::Foo"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(xc_Instantiator::stableNameFrom(c.first), c.second) << c.first;
}

TEST(Instantiator, LookupFindsRegisteredClasses) {
    EXPECT_EQ(xc_Instantiator::registeredName(typeid(xc2XformLinear)), "xc2XformLinear");
    const xc_Instantiator::MakeFunction make = xc_Instantiator::lookup("xc2XformLinear");
    ASSERT_NE(make, nullptr);
    std::unique_ptr<xcPersistent> made(make());
    EXPECT_NE(dynamic_cast<xc2XformLinear*>(made.get()), nullptr);
    EXPECT_EQ(xc_Instantiator::lookup("NoSuchClass"), nullptr);
    EXPECT_EQ(xc_Instantiator::registeredName(typeid(int)), "");
}

TEST(Instantiator, FoundationExceptionsAreRegistered) {
    for (const char* name :
         {"xcMathError::Singular", "xcMathError::NotFinite", "xcPel::BadWindow",
          "xcArchive::UnknownVersion", "xcArchive::Truncated", "xcArchive::BadData"}) {
        const xc_Instantiator::MakeFunction make = xc_Instantiator::lookup(name);
        ASSERT_NE(make, nullptr) << name;
        std::unique_ptr<xcPersistent> made(make());
        EXPECT_EQ(xc_Instantiator::stableName(typeid(*made)), name);
    }
}

struct Scoped : public virtual xcPersistent {
    static xcPersistent* make() { return new Scoped(); }
};

TEST(Instantiator, DestructionRemovesTheRegistration) {
    {
        const xc_Instantiator reg(typeid(Scoped), &Scoped::make);
        EXPECT_NE(xc_Instantiator::lookup("(anonymous namespace)::Scoped"), nullptr);
        { const xc_Instantiator again(typeid(Scoped), &Scoped::make); }
        EXPECT_NE(xc_Instantiator::lookup("(anonymous namespace)::Scoped"), nullptr)
            << "one registration is left";
    }
    EXPECT_EQ(xc_Instantiator::lookup("(anonymous namespace)::Scoped"), nullptr);
    EXPECT_EQ(xc_Instantiator::registeredName(typeid(Scoped)), "");
}

TEST(Instantiator, NameClashLeavesTheSecondTypeUnregistered) {
    // Two local classes of one function share the demangled name "...::Twin".
    std::string firstName;
    std::string secondName;
    xcPersistent* (*makeFirst)() = nullptr;
    xcPersistent* (*makeSecond)() = nullptr;
    const std::type_info* firstType = nullptr;
    const std::type_info* secondType = nullptr;
    {
        struct Twin : public virtual xcPersistent {
            static xcPersistent* make() { return new Twin(); }
        };
        firstName = xc_Instantiator::stableName(typeid(Twin));
        makeFirst = &Twin::make;
        firstType = &typeid(Twin);
    }
    {
        struct Twin : public virtual xcPersistent {
            static xcPersistent* make() { return new Twin(); }
        };
        secondName = xc_Instantiator::stableName(typeid(Twin));
        makeSecond = &Twin::make;
        secondType = &typeid(Twin);
    }
    ASSERT_EQ(firstName, secondName);
    ASSERT_NE(*firstType, *secondType);
    const xc_Instantiator first(*firstType, makeFirst);
    {
        const xc_Instantiator second(*secondType, makeSecond);
        EXPECT_EQ(xc_Instantiator::lookup(firstName), makeFirst);
        EXPECT_EQ(xc_Instantiator::registeredName(*firstType), firstName);
        EXPECT_EQ(xc_Instantiator::registeredName(*secondType), "");
    }
    EXPECT_EQ(xc_Instantiator::lookup(firstName), makeFirst)
        << "the clashing one did not own the name";
}

// ---- pointer records and handles ----

TEST_F(Persistence, NullHandleIsOneTagByte) {
    const Bytes bytes = store(NodeHandle());
    EXPECT_EQ(Bytes(bytes.begin() + 8, bytes.end()), (Bytes{0}));
    EXPECT_TRUE(load<NodeHandle>(bytes).isNull());
}

TEST_F(Persistence, LoadingANullClearsTheHandle) {
    const Bytes bytes = store(NodeHandle());
    NodeHandle h(new Node(5));
    xcMemoryArchive ar(bytes);
    ar || h;
    EXPECT_TRUE(h.isNull());
    EXPECT_EQ(Node::live, 0) << "the previous referent was released";
}

TEST_F(Persistence, SingleObjectRecordBytes) {
    NodeHandle n(new Node(7));
    n->points = {{0.5, -1}};
    const Bytes bytes = store(n);
    wire::Bytes expected;
    expected.header()
        .object(kNodeName)
        .u8(0)
        .u8(0)
        .u32(7)
        .str("")
        .vec(1)
        .f64(0.5)
        .f64(-1)
        .vec(0)
        .null()
        .null();
    EXPECT_EQ(bytes, expected.data());
    const NodeHandle back = load<NodeHandle>(bytes);
    ASSERT_FALSE(back.isNull());
    EXPECT_EQ(back->label, 7u);
    EXPECT_EQ(back->points, n->points);
}

TEST_F(Persistence, SharedObjectIsWrittenOnceAndLoadsAsOneObject) {
    const NodeHandle root = sampleGraph();
    const Bytes bytes = store(root);
    // root, shared and middle are written as objects: three class names.
    EXPECT_EQ(wire::countOccurrences(bytes, kNodeName), 3);

    const NodeHandle back = load<NodeHandle>(bytes);
    ASSERT_EQ(back->children.size(), 4u);
    const ConstNode& shared = back->children[0];
    const ConstNode& middle = back->children[1];
    EXPECT_EQ(back->children[2], shared)
        << "two handles to one object load as two handles to one object";
    EXPECT_TRUE(back->children[3].isNull());
    ASSERT_EQ(middle->children.size(), 1u);
    EXPECT_EQ(middle->children[0], shared);
    EXPECT_NE(middle, shared);
    EXPECT_EQ(back->label, 1u);
    EXPECT_EQ(shared->label, 2u);
    EXPECT_EQ(middle->label, 3u);
    EXPECT_EQ(shared->name, L"shared \u00E9");
    EXPECT_EQ(shared->points, (std::vector<xcVector<2>>{{1, 2}, {3, 4}}));
    // Held by root twice and by middle once, nothing else (the archive is gone).
    EXPECT_EQ(shared->refCount(), 3);
    EXPECT_EQ(middle->refCount(), 1);
    const auto* linear = dynamic_cast<const xc2XformLinear*>(middle->xform.rep());
    ASSERT_NE(linear, nullptr);
    EXPECT_EQ(linear->xform().matrix().element(1, 0), 3.0);
    EXPECT_EQ(linear->xform().trans(), xcVector<2>(5, 6));
    ASSERT_NE(middle->fault, nullptr);
    EXPECT_EQ(middle->fault->message(), L"kept");
    EXPECT_EQ(Node::live, 6) << "three stored, three loaded";
}

TEST_F(Persistence, SameHandleStoredTwiceLoadsAsOneObject) {
    NodeHandle n(new Node(4));
    xcMemoryArchive out;
    out || n || n;
    const Bytes tail(out.bytes().end() - 5, out.bytes().end());
    EXPECT_EQ(tail, wire::Bytes().ref(0).data()) << "the second is a back-reference to object 0";
    xcMemoryArchive in(out.bytes());
    NodeHandle a;
    ConstNode b;
    in || a || b;
    EXPECT_EQ(a, b);
    EXPECT_NE(a, n);
}

TEST_F(Persistence, ArchiveKeepsStoredObjectsAliveForItsLife) {
    auto out = std::make_unique<xcMemoryArchive>();
    Node* raw = nullptr;
    {
        NodeHandle n(new Node(1));
        raw = n.rep();
        *out || n;
    }
    EXPECT_EQ(Node::live, 1) << "the archive still holds the object";
    EXPECT_EQ(raw->refCount(), 1);
    out.reset();
    EXPECT_EQ(Node::live, 0);
}

TEST_F(Persistence, ReferentOfAnotherClassLoadsAsNullAndIsNotLeaked) {
    xcPtrHandle<Other> other(new Other());
    other->value = 1.5;
    const Bytes bytes = store(other);
    other = xcPtrHandle<Other>();
    {
        xcMemoryArchive ar(bytes);
        NodeHandle h(new Node(9));
        ar || h;
        EXPECT_TRUE(h.isNull());
        EXPECT_EQ(Other::live, 1) << "held by the archive until it goes";
    }
    EXPECT_EQ(Other::live, 0);
    // The same bytes load fine as the right class, through either kind of handle.
    EXPECT_EQ(load<xcPtrHandle<Other>>(bytes)->value, 1.5);
    EXPECT_EQ(load<xcPtrHandle_const<Other>>(bytes)->value, 1.5);
}

TEST_F(Persistence, ExceptionLoadedThroughAHandleIsDeletedAtOnce) {
    Fault fault(L"not a node");
    xcMemoryArchive out;
    xcPersistent* unused = nullptr;
    xcPersistent::serializePointer(out, &fault, unused);
    xcMemoryArchive in(out.bytes());
    NodeHandle h;
    in || h;
    EXPECT_TRUE(h.isNull());
    EXPECT_EQ(Fault::live, 1) << "only the stored one is left";
}

TEST_F(Persistence, ExceptionThroughSerializePointerBelongsToTheCaller) {
    Fault fault(L"disk on fire");
    xcMemoryArchive out;
    xcPersistent* unused = nullptr;
    xcPersistent::serializePointer(out, &fault, unused);
    xcPersistent* loaded = nullptr;
    {
        xcMemoryArchive in(out.bytes());
        xcPersistent::serializePointer(in, nullptr, loaded);
    }
    std::unique_ptr<xcPersistent> owner(loaded);
    ASSERT_EQ(Fault::live, 2) << "the archive did not delete it";
    const auto* back = dynamic_cast<const Fault*>(loaded);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->message(), L"disk on fire");
    EXPECT_EQ(back->errorNumber(), 0x7E570001);
}

TEST_F(Persistence, ExceptionsAreNotSharedEachReferenceIsACopy) {
    Fault fault(L"twice");
    xcMemoryArchive out;
    xcPersistent* unused = nullptr;
    xcPersistent::serializePointer(out, &fault, unused);
    xcPersistent::serializePointer(out, &fault, unused);
    EXPECT_EQ(wire::countOccurrences(out.bytes(), kFaultName), 2);
    xcMemoryArchive in(out.bytes());
    xcPersistent* a = nullptr;
    xcPersistent* b = nullptr;
    xcPersistent::serializePointer(in, nullptr, a);
    std::unique_ptr<xcPersistent> ownA(a);
    xcPersistent::serializePointer(in, nullptr, b);
    std::unique_ptr<xcPersistent> ownB(b);
    EXPECT_NE(a, b);
    EXPECT_EQ(dynamic_cast<Fault*>(a)->message(), L"twice");
    EXPECT_EQ(dynamic_cast<Fault*>(b)->message(), L"twice");
}

TEST_F(Persistence, AddressOfADeletedExceptionCanHoldTheNextOne) {
    // The caller frees each exception before loading the next; the allocator may reuse its
    // address, which must not make the next one look already loaded.
    xcMemoryArchive out;
    xcPersistent* unused = nullptr;
    for (const wchar_t* text : {L"first", L"second", L"third"}) {
        Fault f(text);
        xcPersistent::serializePointer(out, &f, unused);
    }
    xcMemoryArchive in(out.bytes());
    for (const wchar_t* text : {L"first", L"second", L"third"}) {
        xcPersistent* p = nullptr;
        xcPersistent::serializePointer(in, nullptr, p);
        std::unique_ptr<xcPersistent> owner(p);
        ASSERT_NE(dynamic_cast<Fault*>(p), nullptr);
        EXPECT_EQ(dynamic_cast<Fault*>(p)->message(), text);
    }
    EXPECT_EQ(in.bytesLeft(), 0u);
}

TEST_F(Persistence, SoleOwnerRoundTripsAnException) {
    std::unique_ptr<Fault> fault(new Fault(L"owned"));
    std::unique_ptr<Fault> none;
    xcMemoryArchive out;
    out || fault || none;
    xcMemoryArchive in(out.bytes());
    std::unique_ptr<Fault> back(new Fault(L"replaced"));
    std::unique_ptr<Fault> stillNone(new Fault(L"cleared"));
    in || back || stillNone;
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->message(), L"owned");
    EXPECT_EQ(stillNone, nullptr);
    EXPECT_EQ(Fault::live, 2);
}

TEST_F(Persistence, SoleOwnerRefusesACountedObject) {
    // A hostile archive puts a counted object where an exception is expected, first as a new
    // object and then as a back-reference to it: the owner gets null, the archive keeps the
    // object and deletes it once.
    Bytes bytes;
    {
        xcPtrHandle<Other> other(new Other());
        xcMemoryArchive out;
        out || other || other;
        bytes = out.bytes();
    }
    {
        xcMemoryArchive in(bytes);
        std::unique_ptr<Fault> a;
        std::unique_ptr<Fault> b;
        in || a || b;
        EXPECT_EQ(a, nullptr);
        EXPECT_EQ(b, nullptr);
        EXPECT_EQ(Other::live, 1);
    }
    EXPECT_EQ(Other::live, 0);
}

TEST_F(Persistence, SoleOwnerDeletesAnExceptionOfAnotherClass) {
    xcMemoryArchive out;
    std::unique_ptr<xcException> singular(new xcMathError::Singular(L"s"));
    out || singular;
    xcMemoryArchive in(out.bytes());
    std::unique_ptr<Fault> fault;
    in || fault;
    EXPECT_EQ(fault, nullptr);
    EXPECT_EQ(in.bytesLeft(), 0u);
}

TEST_F(Persistence, UnregisteredClassCannotBeStored) {
    struct Unlisted : public virtual xcPersistent, public virtual xcRepBase {};
    xcPtrHandle<Unlisted> h(new Unlisted());
    xcMemoryArchive ar;
    const auto e = support::caught<xcArchive::UnregisteredClass>([&] { ar || h; });
    ASSERT_TRUE(e);
    EXPECT_EQ(e->errorNumber(), xnErrorNumber::ArchiveUnregisteredClass);
    EXPECT_TRUE(support::says(*e, "Unlisted")) << e->what();
    EXPECT_EQ(ar.bytes().size(), 8u) << "nothing written";
}

TEST_F(Persistence, StoringACycleThrows) {
    NodeHandle a(new Node(1));
    NodeHandle b(new Node(2));
    a->children = {b};
    b->children = {a};
    xcMemoryArchive ar;
    EXPECT_THROW(ar || a, xcArchive::BadReference);
    b->children.clear();  // break the cycle so that both can go
}

// ---- hostile archives ----

TEST_F(Persistence, UnknownClassNameThrowsNamingIt) {
    wire::Bytes b;
    b.header().object("NoSuchClass").u8(0);
    xcMemoryArchive ar(b.data());
    NodeHandle h;
    const auto e = support::caught<xcArchive::UnknownClass>([&] { ar || h; });
    ASSERT_TRUE(e);
    EXPECT_EQ(e->errorNumber(), xnErrorNumber::ArchiveUnknownClass);
    EXPECT_TRUE(support::says(*e, "NoSuchClass")) << e->what();
}

TEST_F(Persistence, BackReferenceOutOfRangeThrows) {
    wire::Bytes b;
    b.header().ref(0);
    xcMemoryArchive ar(b.data());
    NodeHandle h;
    EXPECT_THROW(ar || h, xcArchive::BadReference);

    wire::Bytes one;
    one.header();
    leaf(one, 1).ref(1);
    xcMemoryArchive ar2(one.data());
    NodeHandle first;
    NodeHandle second;
    ar2 || first;
    const auto e = support::caught<xcArchive::BadReference>([&] { ar2 || second; });
    ASSERT_TRUE(e);
    EXPECT_TRUE(support::says(*e, "object 1 of 1")) << e->what();
}

TEST_F(Persistence, BackReferenceToAnObjectStillLoadingThrows) {
    // Node 0 names itself as its child: a cycle.
    wire::Bytes b;
    b.header();
    nodeBegin(b, 1, 1).ref(0);
    nodeEnd(b);
    xcMemoryArchive ar(b.data());
    NodeHandle h;
    EXPECT_THROW(ar || h, xcArchive::BadReference);
}

TEST_F(Persistence, BackReferenceToAnObjectWithoutACountThrows) {
    // Objects without a count take no number: reference 0 names nothing.
    wire::Bytes b;
    // The exception's levels: xcExceptionWithString, xcException and xcPersistent versions,
    // message.
    b.header().object(kFaultName).u8(0).u8(0).u8(0).str("x").ref(0);
    xcMemoryArchive ar(b.data());
    xcPersistent* p = nullptr;
    xcPersistent::serializePointer(ar, nullptr, p);
    std::unique_ptr<xcPersistent> owner(p);
    NodeHandle h;
    EXPECT_THROW(ar || h, xcArchive::BadReference);
}

TEST_F(Persistence, InvalidPointerTagIsBadData) {
    wire::Bytes b;
    b.header().u8(3);
    xcMemoryArchive ar(b.data());
    NodeHandle h;
    EXPECT_THROW(ar || h, xcArchive::BadData);
}

TEST_F(Persistence, ClassNameLengthOutOfBoundsIsBadData) {
    for (std::uint32_t length : {0u, 1025u, 4294967295u}) {
        wire::Bytes b;
        b.header().u8(1).u32(length).raw(std::string(2000, 'x'));
        xcMemoryArchive ar(b.data());
        NodeHandle h;
        EXPECT_THROW(ar || h, xcArchive::BadData) << length;
    }
}

TEST_F(Persistence, DeepNestingThrowsInsteadOfExhaustingTheStack) {
    wire::Bytes b;
    b.header();
    const int depth = 100000;
    for (int i = 0; i < depth; ++i)
        nodeBegin(b, static_cast<std::uint32_t>(i), 1);
    xcMemoryArchive ar(b.data());
    NodeHandle h;
    const auto e = support::caught<xcArchive::BadData>([&] { ar || h; });
    ASSERT_TRUE(e);
    EXPECT_TRUE(support::says(*e, "256")) << e->what();
}

TEST_F(Persistence, NestedCountsDoNotClaimTheSameBytesTwice) {
    // 200 nested nodes each announce a million children, which the megabyte of padding after
    // them could hold; then an invalid tag ends the load. Reserving each count up front would
    // take 200 * 8 MB for a 1 MB archive.
    const std::uint32_t claimed = 1000000;
    wire::Bytes b;
    b.header();
    for (int i = 0; i < 200; ++i)
        nodeBegin(b, 0, claimed);
    b.u8(3).raw(std::string(claimed + 16, '\0'));
    Node::maxChildrenCapacity = 0;
    {
        xcMemoryArchive ar(b.data());
        NodeHandle h;
        EXPECT_THROW(ar || h, xcArchive::BadData);
    }  // the nodes go with the archive
    EXPECT_GT(Node::maxChildrenCapacity, 0u);
    EXPECT_LE(Node::maxChildrenCapacity, xcArchive::kVectorReserveLimit);
}

// A chain root -> n1 -> ... -> n(depth-1), all nested.
NodeHandle nestedChain(int depth) {
    NodeHandle top(new Node(0));
    Node* last = top.rep();
    for (int i = 1; i < depth; ++i) {
        NodeHandle next(new Node(static_cast<unsigned long>(i)));
        last->children = {next};
        last = next.rep();
    }
    return top;
}

// Releases a chain link by link, so that destroying it does not recurse.
void dismantle(NodeHandle top) {
    while (top && !top->children.empty()) {
        ConstNode next = top->children[0];
        top->children.clear();
        top = NodeHandle(const_cast<Node*>(next.rep()));
    }
}

TEST_F(Persistence, NestingUpToTheLimitRoundTrips) {
    NodeHandle top = nestedChain(xcArchive::kMaxObjectDepth);
    const NodeHandle back = load<NodeHandle>(store(top));
    int length = 1;
    for (const Node* n = back.rep(); !n->children.empty(); n = n->children[0].rep())
        ++length;
    EXPECT_EQ(length, xcArchive::kMaxObjectDepth);
    dismantle(top);
}

TEST_F(Persistence, StoringNestingBeyondTheLimitThrows) {
    NodeHandle top = nestedChain(xcArchive::kMaxObjectDepth + 1);
    xcMemoryArchive ar;
    EXPECT_THROW(ar || top, xcArchive::BadData);
    dismantle(top);
}

// root -> [n1, ..., nk] where each n(i) refers back to n(i-1): a chain of back-references.
NodeHandle referenceChain(int length) {
    NodeHandle root(new Node(0));
    ConstNode previous;
    for (int i = 1; i <= length; ++i) {
        NodeHandle n(new Node(static_cast<unsigned long>(i)));
        if (previous)
            n->children = {previous};
        root->children.push_back(n);
        previous = n;
    }
    return root;
}

TEST_F(Persistence, ChainOfBackReferencesUpToTheLimitRoundTrips) {
    // n(k) has depth k and root k + 1: the longest chain that fits has k = limit - 1.
    const NodeHandle root = referenceChain(xcArchive::kMaxObjectDepth - 1);
    const NodeHandle back = load<NodeHandle>(store(root));
    ASSERT_EQ(back->children.size(), static_cast<std::size_t>(xcArchive::kMaxObjectDepth - 1));
    EXPECT_EQ(back->children[5]->children[0], back->children[4]);
}

TEST_F(Persistence, StoringAChainOfBackReferencesBeyondTheLimitThrows) {
    NodeHandle root = referenceChain(xcArchive::kMaxObjectDepth);
    xcMemoryArchive ar;
    EXPECT_THROW(ar || root, xcArchive::BadData);
}

TEST_F(Persistence, ObjectWithoutACountAtTheEndOfAChainTooLongIsDeleted) {
    // The root of referenceChain(limit - 1) has the greatest depth allowed; a carrier that
    // refers to it would be one deeper.
    Bytes bytes = store(referenceChain(xcArchive::kMaxObjectDepth - 1));
    const Bytes carrier =
        wire::Bytes().object("persistent_test::Carrier").u8(0).u8(0).ref(0).data();
    bytes.insert(bytes.end(), carrier.begin(), carrier.end());
    xcMemoryArchive ar(bytes);
    NodeHandle root;
    ar || root;
    std::unique_ptr<Carrier> c;
    EXPECT_THROW(ar || c, xcArchive::BadData);
    EXPECT_EQ(Carrier::live, 0);
}

TEST_F(Persistence, LoadingAHandMadeChainOfBackReferencesBeyondTheLimitThrows) {
    // The same shape as referenceChain(100000), written by hand: ids are 0 for the root, i for
    // n(i); the nesting is only two deep, the chain 100000 long.
    const std::uint32_t length = 100000;
    wire::Bytes b;
    b.header();
    nodeBegin(b, 0, length);
    leaf(b, 1);
    for (std::uint32_t i = 2; i <= length; ++i) {
        nodeBegin(b, i, 1).ref(i - 1);
        nodeEnd(b);
    }
    nodeEnd(b);
    xcMemoryArchive ar(b.data());
    NodeHandle h;
    EXPECT_THROW(ar || h, xcArchive::BadData);
}

TEST_F(Persistence, EveryTruncationFailsWithAnArchiveError) {
    const Bytes full = store(sampleGraph());
    ASSERT_GT(full.size(), 200u);
    for (std::size_t n = 0; n < full.size(); ++n) {
        try {
            xcMemoryArchive ar(full.data(), n);
            NodeHandle h;
            ar || h;
            ADD_FAILURE() << "a prefix of " << n << " bytes loaded";
        } catch (const xcException& e) {
            EXPECT_TRUE(isArchiveError(e)) << n << ": " << e.what();
        }
        ASSERT_EQ(Node::live + Fault::live, 0) << "leak after a cut at " << n;
    }
}

TEST_F(Persistence, FlippedBytesNeverCrash) {
    const Bytes full = store(sampleGraph());
    int failures = 0;
    int successes = 0;
    for (std::size_t i = 0; i < full.size(); ++i) {
        for (unsigned mask : {0x01u, 0x80u, 0xFFu}) {
            Bytes bytes = full;
            bytes[i] = static_cast<unsigned char>(bytes[i] ^ mask);
            try {
                xcMemoryArchive ar(bytes);
                NodeHandle h;
                ar || h;
                ++successes;
            } catch (const xcException&) {
                ++failures;
            }
            ASSERT_EQ(Node::live + Fault::live + Other::live, 0)
                << "leak after flipping byte " << i;
        }
    }
    EXPECT_GT(failures, 0);
    EXPECT_GT(successes, 0) << "flipping a label or coordinate bit loads fine";
}

TEST_F(Persistence, RandomCorruptionsNeverCrash) {
    const Bytes full = store(sampleGraph());
    std::mt19937 gen(99);  // the sequence of mt19937 is fixed by the standard
    int failures = 0;
    for (int round = 0; round < 3000; ++round) {
        Bytes bytes = full;
        const int edits = 1 + static_cast<int>(gen() % 4);
        for (int k = 0; k < edits; ++k)
            bytes[8 + gen() % (bytes.size() - 8)] = static_cast<unsigned char>(gen());
        try {
            xcMemoryArchive ar(bytes);
            NodeHandle h;
            ar || h;
        } catch (const xcException&) {
            ++failures;
        }
        ASSERT_EQ(Node::live + Fault::live + Other::live, 0) << "leak in round " << round;
    }
    EXPECT_GT(failures, 0);
}

}  // namespace
