// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <string>

#include "capture/graph/graph_rules.h"
#include "platform/pipewire/event_flag.h"
#include "platform/pipewire/handles.h"

namespace vantoro::pipewire {

/// A connection to the sound server, with the thread that runs its callbacks ("the loop"). Create,
/// use and destroy it on a task thread or a queue's thread, never on the loop. Destroy everything
/// else that uses the core first, or remove it under the lock.
class Connection {
public:
    /// Called on the loop.
    struct Callbacks {
        std::function<void()> lost;       ///< the server is gone; may be called repeatedly
        std::function<void()> identified; ///< our client id is known
    };

    /// Throws `Failure` if there is no server.
    explicit Connection(Callbacks callbacks);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    /// Starts the loop. Set-up before this call needs no lock.
    void run();

    /// Ends the loop; call without the lock. Tear-down after this call needs no lock.
    void end();

    pw_thread_loop* threadLoop() const noexcept { return threadLoop_.get(); }

    pw_loop* loop() const noexcept { return pw_thread_loop_get_loop(threadLoop_.get()); }

    pw_core* core() const noexcept { return core_.get(); }

    /// On the loop, or under its lock.
    const capture::Self& self() const noexcept { return self_; }

    /// Task thread, without the lock: returns once the server has announced all objects and their
    /// details. False if it does not by the deadline, or is gone.
    bool awaitObjects(Deadline deadline);

private:
    bool roundTrip(Deadline deadline);

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
    Hook coreHook_; // after the core: must be destroyed first
    Hook clientHook_;
};

} // namespace vantoro::pipewire
