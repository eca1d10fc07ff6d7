#ifndef FOUNDATION_HANDLE_H
#define FOUNDATION_HANDLE_H

#include <atomic>
#include <cstddef>
#include <type_traits>

#include <foundation/export.h>

/// The reference count of objects shared through counted handles. Derive from it (virtually, so
/// that a diamond holds one count). Copying an object does not copy its count: a copy starts
/// unshared.
class FOUNDATION_API xcRepBase {
  public:
    /// The number of handles that currently hold this object.
    long refCount() const { return count_.load(std::memory_order_relaxed); }

    /// Adds one holder. Used by the handles and by archives that keep loaded objects alive.
    void addRef() const { count_.fetch_add(1, std::memory_order_relaxed); }
    /// Drops one holder and deletes the object when it was the last.
    void release() const {
        if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }

  protected:
    xcRepBase() = default;
    xcRepBase(const xcRepBase&) {}
    xcRepBase& operator=(const xcRepBase&) { return *this; }
    virtual ~xcRepBase();

  private:
    mutable std::atomic<long> count_{0};
};

template <class T>
class xcPtrHandle_const;

namespace xn_handle_detail {
template <class T>
inline void acquire(const T* p) {
    if (p)
        static_cast<const xcRepBase*>(p)->addRef();
}
template <class T>
inline void drop(const T* p) {
    if (p)
        static_cast<const xcRepBase*>(p)->release();
}
}  // namespace xn_handle_detail

/// A counted handle to a mutable T (T has xcRepBase as a base). Constructing a handle from a
/// pointer makes the handles owners of the object: the last handle to go deletes it. Equality is
/// identity of the referent.
template <class T>
class xcPtrHandle {
  public:
    /// A null handle.
    xcPtrHandle() = default;
    /// Takes (shared) ownership of `p`, which must come from new (or be null).
    explicit xcPtrHandle(T* p) : p_(p) { xn_handle_detail::acquire(p_); }
    xcPtrHandle(const xcPtrHandle& o) : p_(o.p_) { xn_handle_detail::acquire(p_); }
    xcPtrHandle(xcPtrHandle&& o) noexcept : p_(o.p_) { o.p_ = nullptr; }
    /// Derived to base.
    template <class U, class = std::enable_if_t<std::is_convertible<U*, T*>::value>>
    xcPtrHandle(const xcPtrHandle<U>& o) : p_(o.rep()) {  // NOLINT(google-explicit-constructor)
        xn_handle_detail::acquire(p_);
    }
    ~xcPtrHandle() { xn_handle_detail::drop(p_); }

    xcPtrHandle& operator=(const xcPtrHandle& o) {
        xcPtrHandle(o).swap(*this);
        return *this;
    }
    xcPtrHandle& operator=(xcPtrHandle&& o) noexcept {
        xcPtrHandle(static_cast<xcPtrHandle&&>(o)).swap(*this);
        return *this;
    }
    void swap(xcPtrHandle& o) noexcept {
        T* t = p_;
        p_ = o.p_;
        o.p_ = t;
    }

    T* operator->() const { return p_; }
    T& operator*() const { return *p_; }
    /// The referent, or null.
    T* rep() const { return p_; }
    bool isNull() const { return p_ == nullptr; }
    explicit operator bool() const { return p_ != nullptr; }

  private:
    T* p_ = nullptr;
};

/// A counted handle to a const T; otherwise as xcPtrHandle. Mutable handles convert to it.
template <class T>
class xcPtrHandle_const {
  public:
    xcPtrHandle_const() = default;
    explicit xcPtrHandle_const(const T* p) : p_(p) { xn_handle_detail::acquire(p_); }
    xcPtrHandle_const(const xcPtrHandle_const& o) : p_(o.p_) { xn_handle_detail::acquire(p_); }
    xcPtrHandle_const(xcPtrHandle_const&& o) noexcept : p_(o.p_) { o.p_ = nullptr; }
    /// Derived to base, const or mutable.
    template <class U, class = std::enable_if_t<std::is_convertible<const U*, const T*>::value>>
    xcPtrHandle_const(const xcPtrHandle_const<U>& o) : p_(o.rep()) {  // NOLINT
        xn_handle_detail::acquire(p_);
    }
    template <class U, class = std::enable_if_t<std::is_convertible<const U*, const T*>::value>>
    xcPtrHandle_const(const xcPtrHandle<U>& o) : p_(o.rep()) {  // NOLINT
        xn_handle_detail::acquire(p_);
    }
    ~xcPtrHandle_const() { xn_handle_detail::drop(p_); }

    xcPtrHandle_const& operator=(const xcPtrHandle_const& o) {
        xcPtrHandle_const(o).swap(*this);
        return *this;
    }
    xcPtrHandle_const& operator=(xcPtrHandle_const&& o) noexcept {
        xcPtrHandle_const(static_cast<xcPtrHandle_const&&>(o)).swap(*this);
        return *this;
    }
    void swap(xcPtrHandle_const& o) noexcept {
        const T* t = p_;
        p_ = o.p_;
        o.p_ = t;
    }

    const T* operator->() const { return p_; }
    const T& operator*() const { return *p_; }
    const T* rep() const { return p_; }
    bool isNull() const { return p_ == nullptr; }
    explicit operator bool() const { return p_ != nullptr; }

  private:
    const T* p_ = nullptr;
};

/// Identity comparisons between handles of any constness and related types.
template <class T, class U>
bool operator==(const xcPtrHandle<T>& a, const xcPtrHandle<U>& b) {
    return a.rep() == b.rep();
}
template <class T, class U>
bool operator!=(const xcPtrHandle<T>& a, const xcPtrHandle<U>& b) {
    return !(a == b);
}
template <class T, class U>
bool operator==(const xcPtrHandle_const<T>& a, const xcPtrHandle_const<U>& b) {
    return a.rep() == b.rep();
}
template <class T, class U>
bool operator!=(const xcPtrHandle_const<T>& a, const xcPtrHandle_const<U>& b) {
    return !(a == b);
}
template <class T, class U>
bool operator==(const xcPtrHandle<T>& a, const xcPtrHandle_const<U>& b) {
    return a.rep() == b.rep();
}
template <class T, class U>
bool operator!=(const xcPtrHandle<T>& a, const xcPtrHandle_const<U>& b) {
    return !(a == b);
}
template <class T, class U>
bool operator==(const xcPtrHandle_const<T>& a, const xcPtrHandle<U>& b) {
    return a.rep() == b.rep();
}
template <class T, class U>
bool operator!=(const xcPtrHandle_const<T>& a, const xcPtrHandle<U>& b) {
    return !(a == b);
}

#endif
