#pragma once
// Reference-counted services, found by class GUID through the host's core.

#include <atomic>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "guid.h"

// Declares a service class: its GUID and the class it extends (walked by service_query).
#define TUNEHALL_SERVICE_CLASS(PARENT, ...)                                                  \
public:                                                                                      \
    using parent_class = PARENT;                                                             \
    static constexpr GUID class_guid = __VA_ARGS__;

// Base of every service object. Counts are atomic: objects cross threads.
class service_base {
public:
    using parent_class = void;

    // Adds a reference; returns the new count.
    virtual int service_add_ref() noexcept = 0;
    // Drops a reference and destroys the object at zero; returns the new count.
    virtual int service_release() noexcept = 0;
    // True, with a new reference in `out`, when the object implements the class `guid`.
    virtual bool service_query(service_base*& out, const GUID& guid) = 0;

    service_base(const service_base&) = delete;
    service_base& operator=(const service_base&) = delete;

protected:
    service_base() = default;
    virtual ~service_base() = default;
    friend struct service_impl_helper;
};

// Owning pointer holding one reference.
template <typename T>
class service_ref {
public:
    service_ref() = default;
    service_ref(std::nullptr_t) {}
    service_ref(T* p) : p_(p) { if (p_) p_->service_add_ref(); }
    service_ref(const service_ref& o) : service_ref(o.p_) {}
    service_ref(service_ref&& o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    service_ref(const service_ref<U>& o) : service_ref(static_cast<T*>(o.get())) {}
    ~service_ref() { reset(); }

    service_ref& operator=(service_ref o) noexcept { std::swap(p_, o.p_); return *this; }

    T* get() const { return p_; }
    T* operator->() const { return p_; }
    T& operator*() const { return *p_; }
    explicit operator bool() const { return p_ != nullptr; }
    void reset() { if (p_) std::exchange(p_, nullptr)->service_release(); }
    // Takes over a reference the caller already owns.
    void adopt(T* p) { reset(); p_ = p; }
    friend bool operator==(const service_ref& a, const service_ref& b) { return a.p_ == b.p_; }

private:
    T* p_ = nullptr;
};

using service_ptr = service_ref<service_base>;

// How an object of this module dies when its last reference goes. Each module (component or
// host) links its own definition through the SDK library: the component defers to the host
// while its services are initialised; a host destroys at once.
struct service_impl_helper {
    // Destroys `object` now, or hands it to the host to destroy later when the host says so.
    static void release_object_delayed(service_base* object);
    // Destroys `object` at once.
    static void release_object_now(service_base* object) { delete object; }
};

namespace tunehall::detail {
template <typename C>
bool query_chain(service_base* self, service_base*& out, const GUID& guid) {
    if constexpr (std::is_void_v<C> || std::is_same_v<C, service_base>) {
        return false;
    } else {
        if (guid_equal(guid, C::class_guid)) {
            out = self;
            self->service_add_ref();
            return true;
        }
        return query_chain<typename C::parent_class>(self, out, guid);
    }
}
} // namespace tunehall::detail

// Concrete service object: `service_ref<foo> p = make_service<foo_impl>(args...)`.
template <typename T>
class service_object final : public T {
public:
    template <typename... A>
    explicit service_object(A&&... a) : T(std::forward<A>(a)...) {}
    int service_add_ref() noexcept override { return ++refs_; }
    int service_release() noexcept override {
        int n = --refs_;
        if (n == 0) service_impl_helper::release_object_delayed(this);
        return n;
    }
    bool service_query(service_base*& out, const GUID& guid) override {
        return tunehall::detail::query_chain<T>(this, out, guid);
    }

private:
    std::atomic<int> refs_{0};
};

template <typename Impl, typename... A>
service_ref<Impl> make_service(A&&... a) {
    return service_ref<Impl>(new service_object<Impl>(std::forward<A>(a)...));
}

// Fatal internal error of the host (its shared library's uBugCheck).
[[noreturn]] void tunehall_bug_check(const char* text);

// Casts between service interfaces; a failure is fatal ("forced cast failure").
template <typename T>
service_ref<T> service_cast(const service_ptr& p) {
    service_base* out = nullptr;
    if (!p || !p->service_query(out, T::class_guid)) tunehall_bug_check("forced cast failure");
    service_ref<T> r;
    r.adopt(static_cast<T*>(out));
    return r;
}

// One entry of a module's service list: the class it serves and how to make an instance.
class service_factory {
public:
    // Next factory of the same list (lists run in reverse order of construction).
    service_factory* next() const { return next_; }
    const GUID& class_guid() const { return class_guid_; }
    // Makes an instance (a shared one for single services, a fresh one otherwise).
    virtual service_ptr create_instance() = 0;

protected:
    service_factory(const GUID& cls, service_factory*& list_head)
        : next_(list_head), class_guid_(cls) { list_head = this; }
    virtual ~service_factory() = default;

private:
    service_factory* next_;
    GUID class_guid_;
};
