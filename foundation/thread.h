#ifndef FOUNDATION_THREAD_H
#define FOUNDATION_THREAD_H

#include <cstdint>

#include <foundation/export.h>

/// A process-wide slot holding one pointer per thread. A thread that has not set its value
/// reads null. The slot does not own the pointers.
class FOUNDATION_API xc_ThreadLocal {
  public:
    xc_ThreadLocal();
    ~xc_ThreadLocal();
    xc_ThreadLocal(const xc_ThreadLocal&) = delete;
    xc_ThreadLocal& operator=(const xc_ThreadLocal&) = delete;

    /// The calling thread's value (null until set).
    void* OSValue() const;
    /// Sets the calling thread's value.
    void OSValue(void* value);

  private:
    std::uint64_t key_;
};

/// Identifies a thread.
class FOUNDATION_API xcThreadID {
  public:
    using Callback = void (*)(void* argument);

    /// Registers `callback(argument)` to run when `thread` ends (for the main thread: at
    /// process exit). Callbacks of one thread run in the reverse order of registration. A thread
    /// ID that belongs to no running thread is ignored.
    static void atexit(const xcThreadID& thread, Callback callback, void* argument);

    bool operator==(const xcThreadID& o) const { return id_ == o.id_; }
    bool operator!=(const xcThreadID& o) const { return id_ != o.id_; }
    std::uint64_t value() const { return id_; }

  private:
    friend FOUNDATION_API xcThreadID xfGetCurrentThreadID();
    explicit xcThreadID(std::uint64_t id) : id_(id) {}
    std::uint64_t id_;
};

/// The ID of the calling thread. IDs are never reused within a process.
FOUNDATION_API xcThreadID xfGetCurrentThreadID();

#endif
