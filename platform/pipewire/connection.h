// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <string>

#include "capture/graph/graph_rules.h"
#include "platform/pipewire/event_flag.h"
#include "platform/pipewire/handles.h"

namespace vantoro::pipewire {

/// A connection to the sound server, with the thread that its callbacks come on ("the loop").
///
/// Made, used and destroyed by a task thread, or by the thread of a queue, never the loop itself.
/// Whatever else uses the connection's core must be gone before it, or be removed under its lock.
class Connection {
public:
    /// Called on the loop.
    struct Callbacks {
        std::function<void()> lost;       ///< the server is gone; may come more than once
        std::function<void()> identified; ///< we have learnt who we are
    };

    /// Throws `Failure` when there is no server.
    explicit Connection(Callbacks callbacks);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    /// Starts the loop. Before, everything may be set up without its lock.
    void run();

    /// Ends the loop, without the lock. After, everything may be taken down without it.
    void end();

    pw_thread_loop* threadLoop() const noexcept { return threadLoop_.get(); }

    pw_loop* loop() const noexcept { return pw_thread_loop_get_loop(threadLoop_.get()); }

    pw_core* core() const noexcept { return core_.get(); }

    /// On the loop, or under its lock.
    const capture::Self& self() const noexcept { return self_; }

    /// Task thread, without the lock: returns when the server has answered everything that was
    /// asked of it so far. False when it has not by then, or is gone.
    bool roundTrip(Deadline deadline);

private:
    void connect();
    static void coreDone(void* data, std::uint32_t id, int sequence);
    static void coreError(void* data, std::uint32_t id, int sequence, int result,
                          const char* message);
    static void clientInfo(void* data, const pw_client_info* info);

    static const pw_core_events coreEvents;
    static const pw_client_events clientEvents;

    Library library_;
    Callbacks callbacks_;
    capture::Self self_;
    int awaitedSequence_ = 0;
    bool lost_ = false;
    EventFlag answered_;
    ThreadLoopPointer threadLoop_;
    ContextPointer context_;
    CorePointer core_;
    std::optional<Hook> coreHook_;
    std::optional<Hook> clientHook_;
};

} // namespace vantoro::pipewire
