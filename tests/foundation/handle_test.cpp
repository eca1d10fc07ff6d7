#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/handle.h>

namespace {

// Counts live instances so that tests can see exactly when the last handle deletes.
class Tracked : public virtual xcRepBase {
  public:
    explicit Tracked(int value = 0) : value_(value) { ++live; }
    Tracked(const Tracked& other) : xcRepBase(other), value_(other.value_) { ++live; }
    ~Tracked() override { --live; }
    int value() const { return value_; }
    void value(int v) { value_ = v; }
    static int live;

  private:
    int value_;
};
int Tracked::live = 0;

class TrackedChild : public Tracked {
  public:
    explicit TrackedChild(int value) : Tracked(value) {}
    int twice() const { return 2 * value(); }
};

// Two paths to the count through virtual bases: still one count.
class Left : public virtual xcRepBase {};
class Right : public virtual xcRepBase {};
class Diamond : public Left, public Right, public Tracked {};

class HandleTest : public testing::Test {
  protected:
    void SetUp() override { Tracked::live = 0; }
    void TearDown() override { EXPECT_EQ(Tracked::live, 0) << "an object leaked or was kept"; }
};

TEST_F(HandleTest, NullHandle) {
    const xcPtrHandle<Tracked> h;
    EXPECT_TRUE(h.isNull());
    EXPECT_FALSE(static_cast<bool>(h));
    EXPECT_EQ(h.rep(), nullptr);
    const xcPtrHandle_const<Tracked> c;
    EXPECT_TRUE(c.isNull());
    EXPECT_FALSE(static_cast<bool>(c));
    EXPECT_EQ(c.rep(), nullptr);
}

TEST_F(HandleTest, HandleFromNullPointerIsNull) {
    const xcPtrHandle<Tracked> h(nullptr);
    EXPECT_TRUE(h.isNull());
}

TEST_F(HandleTest, HandleOwnsTheObject) {
    {
        const xcPtrHandle<Tracked> h(new Tracked(7));
        EXPECT_EQ(Tracked::live, 1);
        EXPECT_FALSE(h.isNull());
        EXPECT_TRUE(static_cast<bool>(h));
        EXPECT_EQ(h->value(), 7);
        EXPECT_EQ((*h).value(), 7);
        EXPECT_EQ(h.rep()->refCount(), 1);
    }
    EXPECT_EQ(Tracked::live, 0);
}

TEST_F(HandleTest, LastHandleDeletes) {
    auto* h1 = new xcPtrHandle<Tracked>(new Tracked(1));
    auto* h2 = new xcPtrHandle<Tracked>(*h1);
    auto* h3 = new xcPtrHandle<Tracked>(*h2);
    EXPECT_EQ(h1->rep()->refCount(), 3);
    delete h2;
    EXPECT_EQ(Tracked::live, 1);
    EXPECT_EQ(h1->rep()->refCount(), 2);
    delete h1;
    EXPECT_EQ(Tracked::live, 1);
    EXPECT_EQ(h3->rep()->refCount(), 1);
    delete h3;
    EXPECT_EQ(Tracked::live, 0);
}

TEST_F(HandleTest, CopiesShareTheObject) {
    xcPtrHandle<Tracked> a(new Tracked(1));
    const xcPtrHandle<Tracked> b = a;
    a->value(5);
    EXPECT_EQ(b->value(), 5);
    EXPECT_EQ(a.rep(), b.rep());
    EXPECT_EQ(Tracked::live, 1);
}

TEST_F(HandleTest, AssignmentReleasesThePreviousObject) {
    xcPtrHandle<Tracked> a(new Tracked(1));
    const xcPtrHandle<Tracked> b(new Tracked(2));
    EXPECT_EQ(Tracked::live, 2);
    a = b;
    EXPECT_EQ(Tracked::live, 1);
    EXPECT_EQ(a->value(), 2);
    EXPECT_EQ(b.rep()->refCount(), 2);
    a = xcPtrHandle<Tracked>();
    EXPECT_TRUE(a.isNull());
    EXPECT_EQ(b.rep()->refCount(), 1);
}

TEST_F(HandleTest, SelfAssignmentKeepsTheObject) {
    xcPtrHandle<Tracked> a(new Tracked(3));
    const xcPtrHandle<Tracked>& alias = a;
    a = alias;
    EXPECT_EQ(Tracked::live, 1);
    EXPECT_EQ(a->value(), 3);
    EXPECT_EQ(a.rep()->refCount(), 1);
    xcPtrHandle<Tracked>& sameHandle = a;
    a = std::move(sameHandle);  // a self-move must not drop the object
    EXPECT_EQ(a->value(), 3);
    EXPECT_EQ(Tracked::live, 1);
}

TEST_F(HandleTest, MoveTransfersWithoutCounting) {
    xcPtrHandle<Tracked> a(new Tracked(4));
    Tracked* object = a.rep();
    xcPtrHandle<Tracked> b(std::move(a));
    EXPECT_TRUE(a.isNull());  // NOLINT: the moved-from state is specified as null
    EXPECT_EQ(b.rep(), object);
    EXPECT_EQ(object->refCount(), 1);
    xcPtrHandle<Tracked> c;
    c = std::move(b);
    EXPECT_TRUE(b.isNull());  // NOLINT
    EXPECT_EQ(c.rep(), object);
    EXPECT_EQ(object->refCount(), 1);
    EXPECT_EQ(Tracked::live, 1);
}

TEST_F(HandleTest, MoveOfConstHandle) {
    xcPtrHandle_const<Tracked> a(new Tracked(4));
    const Tracked* object = a.rep();
    xcPtrHandle_const<Tracked> b(std::move(a));
    EXPECT_TRUE(a.isNull());  // NOLINT
    EXPECT_EQ(b.rep(), object);
    EXPECT_EQ(object->refCount(), 1);
}

TEST_F(HandleTest, MutableConvertsToConst) {
    const xcPtrHandle<Tracked> m(new Tracked(8));
    const xcPtrHandle_const<Tracked> c = m;
    EXPECT_EQ(c.rep(), m.rep());
    EXPECT_EQ(c->value(), 8);
    EXPECT_EQ(m.rep()->refCount(), 2);
    static_assert(std::is_same<decltype(c.rep()), const Tracked*>::value, "const access only");
    static_assert(!std::is_convertible<xcPtrHandle_const<Tracked>, xcPtrHandle<Tracked>>::value,
                  "const handles do not convert back to mutable ones");
}

TEST_F(HandleTest, ConstHandleKeepsObjectAliveAfterMutableOnesGo) {
    xcPtrHandle_const<Tracked> c;
    {
        const xcPtrHandle<Tracked> m(new Tracked(9));
        c = m;
    }
    EXPECT_EQ(Tracked::live, 1);
    EXPECT_EQ(c->value(), 9);
    c = xcPtrHandle_const<Tracked>();
    EXPECT_EQ(Tracked::live, 0);
}

TEST_F(HandleTest, DerivedConvertsToBase) {
    const xcPtrHandle<TrackedChild> child(new TrackedChild(21));
    const xcPtrHandle<Tracked> base = child;
    const xcPtrHandle_const<Tracked> constBase = child;
    const xcPtrHandle_const<TrackedChild> constChild = child;
    const xcPtrHandle_const<Tracked> constBaseFromConst = constChild;
    EXPECT_EQ(base->value(), 21);
    EXPECT_EQ(constBaseFromConst->value(), 21);
    EXPECT_EQ(child->twice(), 42);
    EXPECT_EQ(child.rep()->refCount(), 5);
    EXPECT_TRUE(base == child);
    EXPECT_TRUE(constBase == child);
    static_assert(!std::is_convertible<xcPtrHandle<Tracked>, xcPtrHandle<TrackedChild>>::value,
                  "no base-to-derived conversion");
}

TEST_F(HandleTest, LastBaseHandleDeletesDerivedObject) {
    {
        xcPtrHandle<Tracked> base;
        {
            const xcPtrHandle<TrackedChild> child(new TrackedChild(1));
            base = child;
        }
        EXPECT_EQ(Tracked::live, 1);
    }
    EXPECT_EQ(Tracked::live, 0);  // deleted through the virtual destructor
}

TEST_F(HandleTest, DiamondHasOneCount) {
    const xcPtrHandle<Diamond> d(new Diamond);
    const xcPtrHandle<Left> l = d;
    const xcPtrHandle<Right> r = d;
    const xcPtrHandle<Tracked> t = d;
    EXPECT_EQ(d.rep()->refCount(), 4);
    EXPECT_EQ(l.rep()->refCount(), 4);
    EXPECT_EQ(r.rep()->refCount(), 4);
    EXPECT_EQ(t.rep()->refCount(), 4);
}

TEST_F(HandleTest, EqualityIsIdentity) {
    const xcPtrHandle<Tracked> a(new Tracked(1));
    const xcPtrHandle<Tracked> b(new Tracked(1));  // equal value, different object
    const xcPtrHandle<Tracked> a2 = a;
    EXPECT_TRUE(a == a2);
    EXPECT_FALSE(a != a2);
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(a != b);
    const xcPtrHandle_const<Tracked> ca = a, cb = b;
    EXPECT_TRUE(ca == a);
    EXPECT_TRUE(a == ca);
    EXPECT_TRUE(ca != b);
    EXPECT_TRUE(b != ca);
    EXPECT_TRUE(ca != cb);
}

TEST_F(HandleTest, NullHandlesAreEqual) {
    EXPECT_TRUE(xcPtrHandle<Tracked>() == xcPtrHandle<Tracked>());
    EXPECT_TRUE(xcPtrHandle_const<Tracked>() == xcPtrHandle<Tracked>());
    const xcPtrHandle<Tracked> a(new Tracked);
    EXPECT_TRUE(a != xcPtrHandle<Tracked>());
}

TEST_F(HandleTest, SwapExchangesReferents) {
    xcPtrHandle<Tracked> a(new Tracked(1)), b(new Tracked(2));
    a.swap(b);
    EXPECT_EQ(a->value(), 2);
    EXPECT_EQ(b->value(), 1);
    EXPECT_EQ(a.rep()->refCount(), 1);
}

TEST_F(HandleTest, CopyOfObjectStartsUnshared) {
    const xcPtrHandle<Tracked> a(new Tracked(6));
    const xcPtrHandle<Tracked> a2 = a;
    const xcPtrHandle<Tracked> copy(new Tracked(*a));  // copies the value, not the count
    EXPECT_EQ(copy.rep()->refCount(), 1);
    EXPECT_EQ(copy->value(), 6);
    EXPECT_EQ(a.rep()->refCount(), 2);
}

TEST_F(HandleTest, ManyHandlesInAContainer) {
    std::vector<xcPtrHandle_const<Tracked>> handles;
    {
        const xcPtrHandle<Tracked> original(new Tracked(1));
        for (int i = 0; i < 1000; ++i)
            handles.emplace_back(original);
        EXPECT_EQ(original.rep()->refCount(), 1001);
    }
    EXPECT_EQ(Tracked::live, 1);
    handles.resize(1);
    EXPECT_EQ(handles.front().rep()->refCount(), 1);
    handles.clear();
    EXPECT_EQ(Tracked::live, 0);
}

TEST_F(HandleTest, CountIsSafeAcrossThreads) {
    // Threads copy and drop handles to one object concurrently; the object must be deleted
    // exactly once, by whoever drops the last handle (ASan reports a double delete or a leak).
    xcPtrHandle<Tracked> shared(new Tracked(1));
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([copy = shared] {
            for (int i = 0; i < 20000; ++i) {
                const xcPtrHandle<Tracked> a = copy;
                const xcPtrHandle_const<Tracked> b = a;
                (void)b;
            }
        });
    }
    EXPECT_GE(shared.rep()->refCount(), 1);
    shared = xcPtrHandle<Tracked>();
    for (std::thread& t : threads)
        t.join();
    EXPECT_EQ(Tracked::live, 0);
}

}  // namespace
