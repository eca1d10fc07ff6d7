#include <atomic>
#include <future>
#include <set>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <foundation/thread.h>

namespace {

// Records the arguments of exit callbacks in the order they ran.
struct CallLog {
    std::vector<int> order;
    std::atomic<int> calls{0};
};

struct LogEntry {
    CallLog* log;
    int tag;
};

void recordCall(void* argument) {
    auto* entry = static_cast<LogEntry*>(argument);
    entry->log->order.push_back(entry->tag);
    ++entry->log->calls;
}

void setFlag(void* argument) {
    static_cast<std::atomic<bool>*>(argument)->store(true);
}

TEST(ThreadID, SameWithinAThread) {
    EXPECT_EQ(xfGetCurrentThreadID(), xfGetCurrentThreadID());
    EXPECT_EQ(xfGetCurrentThreadID().value(), xfGetCurrentThreadID().value());
}

TEST(ThreadID, DiffersBetweenThreadsAndIsNeverReused) {
    std::set<std::uint64_t> seen{xfGetCurrentThreadID().value()};
    // Threads run one after another, so an implementation that recycled the IDs of finished
    // threads would repeat one here.
    for (int i = 0; i < 8; ++i) {
        std::uint64_t id = 0;
        std::thread t([&id] { id = xfGetCurrentThreadID().value(); });
        t.join();
        EXPECT_TRUE(seen.insert(id).second) << "ID " << id << " handed out twice";
    }
    EXPECT_EQ(seen.size(), 9u);
}

TEST(ThreadAtExit, CallbackRunsWhenTheThreadEnds) {
    std::atomic<bool> ran{false};
    bool ranBeforeEnd = true;
    std::thread t([&] {
        xcThreadID::atexit(xfGetCurrentThreadID(), &setFlag, &ran);
        ranBeforeEnd = ran.load();
    });
    t.join();
    EXPECT_FALSE(ranBeforeEnd);
    EXPECT_TRUE(ran.load());
}

TEST(ThreadAtExit, CallbacksRunInReverseOrderOfRegistration) {
    CallLog log;
    LogEntry first{&log, 1}, second{&log, 2}, third{&log, 3};
    std::thread t([&] {
        const xcThreadID me = xfGetCurrentThreadID();
        xcThreadID::atexit(me, &recordCall, &first);
        xcThreadID::atexit(me, &recordCall, &second);
        xcThreadID::atexit(me, &recordCall, &third);
    });
    t.join();
    EXPECT_EQ(log.order, (std::vector<int>{3, 2, 1}));
}

TEST(ThreadAtExit, CallbackRegisteredFromAnotherThreadRunsWhenTargetEnds) {
    std::promise<xcThreadID> idPromise;
    std::promise<void> registered;
    std::future<xcThreadID> idFuture = idPromise.get_future();
    std::future<void> registeredFuture = registered.get_future();
    std::atomic<bool> ran{false};
    std::thread t([&] {
        idPromise.set_value(xfGetCurrentThreadID());
        registeredFuture.wait();
    });
    xcThreadID::atexit(idFuture.get(), &setFlag, &ran);
    EXPECT_FALSE(ran.load());  // the worker is still waiting
    registered.set_value();
    t.join();
    EXPECT_TRUE(ran.load());
}

TEST(ThreadAtExit, CallbackOnlyRunsForItsOwnThread) {
    std::atomic<bool> ran{false};
    std::promise<void> done;
    std::future<void> doneFuture = done.get_future();
    std::promise<void> release;
    std::future<void> releaseFuture = release.get_future();
    std::thread target([&] {
        xcThreadID::atexit(xfGetCurrentThreadID(), &setFlag, &ran);
        done.set_value();
        releaseFuture.wait();
    });
    doneFuture.wait();
    std::thread other([] { (void)xfGetCurrentThreadID(); });
    other.join();
    EXPECT_FALSE(ran.load());  // another thread ending does not trigger it
    release.set_value();
    target.join();
    EXPECT_TRUE(ran.load());
}

TEST(ThreadAtExit, IdOfAFinishedThreadIsIgnored) {
    std::promise<xcThreadID> idPromise;
    std::future<xcThreadID> idFuture = idPromise.get_future();
    std::thread t([&] { idPromise.set_value(xfGetCurrentThreadID()); });
    t.join();
    std::atomic<bool> ran{false};
    xcThreadID::atexit(idFuture.get(), &setFlag, &ran);
    // Nothing can run it any more; a later thread does not inherit it either.
    std::thread later([] { (void)xfGetCurrentThreadID(); });
    later.join();
    EXPECT_FALSE(ran.load());
}

TEST(ThreadAtExit, NullCallbackIsIgnored) {
    CallLog log;
    LogEntry entry{&log, 5};
    std::thread t([&] {
        const xcThreadID me = xfGetCurrentThreadID();
        xcThreadID::atexit(me, nullptr, &entry);
        xcThreadID::atexit(me, &recordCall, &entry);
        xcThreadID::atexit(me, nullptr, nullptr);
    });
    t.join();
    EXPECT_EQ(log.order, (std::vector<int>{5}));  // only the real callback ran, once
}

// A callback that registers another one while its thread is ending.
std::atomic<int> gChainRuns{0};
void chainSecond(void*) {
    gChainRuns += 10;
}
void chainFirst(void*) {
    gChainRuns += 1;
    xcThreadID::atexit(xfGetCurrentThreadID(), &chainSecond, nullptr);
}

TEST(ThreadAtExit, CallbackRegisteredDuringExitAlsoRuns) {
    gChainRuns = 0;
    std::thread t([] { xcThreadID::atexit(xfGetCurrentThreadID(), &chainFirst, nullptr); });
    t.join();
    EXPECT_EQ(gChainRuns.load(), 11);
}

TEST(ThreadLocal, UnsetValueIsNull) {
    xc_ThreadLocal slot;
    EXPECT_EQ(slot.OSValue(), nullptr);
}

TEST(ThreadLocal, ValueIsPerThread) {
    xc_ThreadLocal slot;
    int mainValue = 1, workerValue = 2;
    slot.OSValue(&mainValue);
    void* seenAtStart = &mainValue;
    void* seenAfterSet = nullptr;
    std::thread t([&] {
        seenAtStart = slot.OSValue();
        slot.OSValue(&workerValue);
        seenAfterSet = slot.OSValue();
    });
    t.join();
    EXPECT_EQ(seenAtStart, nullptr);  // the main thread's value is not visible in the worker
    EXPECT_EQ(seenAfterSet, &workerValue);
    EXPECT_EQ(slot.OSValue(), &mainValue);  // and the worker's did not replace the main one
}

TEST(ThreadLocal, SlotsAreIndependent) {
    xc_ThreadLocal a, b;
    int x = 0, y = 0;
    a.OSValue(&x);
    EXPECT_EQ(b.OSValue(), nullptr);
    b.OSValue(&y);
    EXPECT_EQ(a.OSValue(), &x);
    EXPECT_EQ(b.OSValue(), &y);
    a.OSValue(nullptr);
    EXPECT_EQ(a.OSValue(), nullptr);
    EXPECT_EQ(b.OSValue(), &y);
}

TEST(ThreadLocal, NewSlotDoesNotSeeValuesOfADestroyedOne) {
    int x = 0;
    {
        xc_ThreadLocal old;
        old.OSValue(&x);
    }
    xc_ThreadLocal fresh;
    EXPECT_EQ(fresh.OSValue(), nullptr);
}

// The per-thread cache pattern: a heap value in a slot, freed by an exit callback that also
// clears the slot. The callback must be able to use the slot while the thread ends, whichever
// of the two the thread touched first.
struct SlotAndValue {
    xc_ThreadLocal* slot;
    std::atomic<int>* freed;
};

void freeSlotValue(void* argument) {
    auto* s = static_cast<SlotAndValue*>(argument);
    delete static_cast<int*>(s->slot->OSValue());
    s->slot->OSValue(nullptr);
    ++*s->freed;
    delete s;
}

TEST(ThreadLocal, ExitCallbackCanUseTheSlotWhenIdWasTakenFirst) {
    xc_ThreadLocal slot;
    std::atomic<int> freed{0};
    std::thread t([&] {
        const xcThreadID me = xfGetCurrentThreadID();  // before the slot is first used
        slot.OSValue(new int(7));
        xcThreadID::atexit(me, &freeSlotValue, new SlotAndValue{&slot, &freed});
    });
    t.join();
    EXPECT_EQ(freed.load(), 1);
}

TEST(ThreadLocal, ExitCallbackCanUseTheSlotWhenSlotWasUsedFirst) {
    xc_ThreadLocal slot;
    std::atomic<int> freed{0};
    std::thread t([&] {
        slot.OSValue(new int(7));
        xcThreadID::atexit(xfGetCurrentThreadID(), &freeSlotValue, new SlotAndValue{&slot, &freed});
    });
    t.join();
    EXPECT_EQ(freed.load(), 1);
}

TEST(ThreadLocal, ManyThreadsEachSeeTheirOwnValue) {
    xc_ThreadLocal slot;
    constexpr int kThreads = 8;
    std::vector<int> values(kThreads);
    std::atomic<int> mismatches{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            slot.OSValue(&values[i]);
            for (int k = 0; k < 1000; ++k)
                if (slot.OSValue() != &values[i])
                    ++mismatches;
        });
    }
    for (std::thread& t : threads)
        t.join();
    EXPECT_EQ(mismatches.load(), 0);
}

}  // namespace
