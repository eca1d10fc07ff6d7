#include <atomic>
#include <map>
#include <mutex>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

#include <foundation/thread.h>

namespace {

std::atomic<std::uint64_t> gNextKey{1};
std::atomic<std::uint64_t> gNextThread{1};

std::unordered_map<std::uint64_t, void*>& threadValues() {
    thread_local std::unordered_map<std::uint64_t, void*> values;
    return values;
}

// Callbacks registered per live thread. Leaked on purpose: threads may end during static
// destruction and must still find it.
struct ExitRegistry {
    std::mutex mutex;
    std::set<std::uint64_t> live;
    std::map<std::uint64_t, std::vector<std::pair<xcThreadID::Callback, void*>>> callbacks;
};

ExitRegistry& exitRegistry() {
    static ExitRegistry* r = new ExitRegistry;
    return *r;
}

// One per thread that asked for its ID: runs that thread's exit callbacks when it ends.
struct ThreadSentinel {
    std::uint64_t id;
    ThreadSentinel() : id(gNextThread.fetch_add(1)) {
        // Thread-local objects are destroyed in the reverse order of their construction. Creating
        // the slot values first makes them outlive the sentinel, so exit callbacks may still use
        // xc_ThreadLocal slots.
        (void)threadValues();
        ExitRegistry& r = exitRegistry();
        std::lock_guard<std::mutex> lock(r.mutex);
        r.live.insert(id);
    }
    ~ThreadSentinel() {
        ExitRegistry& r = exitRegistry();
        // A callback may register another; keep going until none is left.
        for (;;) {
            std::vector<std::pair<xcThreadID::Callback, void*>> todo;
            {
                std::lock_guard<std::mutex> lock(r.mutex);
                auto it = r.callbacks.find(id);
                if (it == r.callbacks.end() || it->second.empty()) {
                    r.callbacks.erase(id);
                    r.live.erase(id);
                    return;
                }
                todo.swap(it->second);
            }
            for (auto c = todo.rbegin(); c != todo.rend(); ++c)
                c->first(c->second);
        }
    }
};

}  // namespace

xc_ThreadLocal::xc_ThreadLocal() : key_(gNextKey.fetch_add(1)) {}
xc_ThreadLocal::~xc_ThreadLocal() = default;

void* xc_ThreadLocal::OSValue() const {
    const auto& values = threadValues();
    const auto it = values.find(key_);
    return it == values.end() ? nullptr : it->second;
}

void xc_ThreadLocal::OSValue(void* value) {
    threadValues()[key_] = value;
}

xcThreadID xfGetCurrentThreadID() {
    thread_local ThreadSentinel sentinel;
    return xcThreadID(sentinel.id);
}

void xcThreadID::atexit(const xcThreadID& thread, Callback callback, void* argument) {
    if (!callback)
        return;
    ExitRegistry& r = exitRegistry();
    std::lock_guard<std::mutex> lock(r.mutex);
    if (r.live.count(thread.id_) == 0)
        return;
    r.callbacks[thread.id_].emplace_back(callback, argument);
}
