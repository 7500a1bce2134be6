// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>

#include <pipewire/pipewire.h>

namespace vantoro::pipewire {

/// A deleter that calls a C function.
template <auto function>
struct Disposer {
    template <class Object>
    void operator()(Object* object) const noexcept {
        function(object);
    }
};

using ThreadLoopPointer = std::unique_ptr<pw_thread_loop, Disposer<pw_thread_loop_destroy>>;
using ContextPointer = std::unique_ptr<pw_context, Disposer<pw_context_destroy>>;
using CorePointer = std::unique_ptr<pw_core, Disposer<pw_core_disconnect>>;
using ProxyPointer = std::unique_ptr<pw_proxy, Disposer<pw_proxy_destroy>>;
using StreamPointer = std::unique_ptr<pw_stream, Disposer<pw_stream_destroy>>;
using PropertiesPointer = std::unique_ptr<pw_properties, Disposer<pw_properties_free>>;

/// Initialises the library while it is in use; the library counts its users.
class Library {
public:
    Library() { pw_init(nullptr, nullptr); }

    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    ~Library() { pw_deinit(); }
};

/// A registered callback table. Must be destroyed before its object.
class Hook {
public:
    Hook() = default;
    Hook(const Hook&) = delete;
    Hook& operator=(const Hook&) = delete;

    ~Hook() { spa_hook_remove(&hook_); }

    spa_hook* get() noexcept { return &hook_; }

private:
    spa_hook hook_{};
};

/// Holds a thread loop's lock: no callback runs meanwhile.
class LoopLock {
public:
    explicit LoopLock(pw_thread_loop* loop) : loop_(loop) { pw_thread_loop_lock(loop_); }

    LoopLock(const LoopLock&) = delete;
    LoopLock& operator=(const LoopLock&) = delete;

    ~LoopLock() { pw_thread_loop_unlock(loop_); }

private:
    pw_thread_loop* loop_;
};

} // namespace vantoro::pipewire
