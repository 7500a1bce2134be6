// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/gio/default_application.h"

#include <future>
#include <memory>
#include <stop_token>

#include <unistd.h>

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

namespace vantoro::desktop {

namespace {

struct ReleaseObject {
    void operator()(gpointer object) const { g_object_unref(object); }
};

template <class Object>
using Owned = std::unique_ptr<Object, ReleaseObject>;

/// A main context that serves only this thread's calls.
class OwnContext {
public:
    OwnContext() : context_(g_main_context_new()) { g_main_context_push_thread_default(context_); }

    OwnContext(const OwnContext&) = delete;
    OwnContext& operator=(const OwnContext&) = delete;

    ~OwnContext() {
        g_main_context_pop_thread_default(context_);
        g_main_context_unref(context_);
    }

    void serveNext() { g_main_context_iteration(context_, TRUE); }

private:
    GMainContext* context_;
};

/// The application's desktop entry if it is started as a process, not over the bus.
GDesktopAppInfo* startedAsProcess(GAppInfo* application) {
    if (!G_IS_DESKTOP_APP_INFO(application)) {
        return nullptr;
    }
    auto* const description = G_DESKTOP_APP_INFO(application);
    return g_desktop_app_info_get_boolean(description, "DBusActivatable") != FALSE ? nullptr
                                                                                   : description;
}

bool startProcess(GDesktopAppInfo* application, GList* uris) {
    // In a session of its own, so that it survives the end of our terminal.
    return g_desktop_app_info_launch_uris_as_manager(
               application, uris, nullptr, G_SPAWN_SEARCH_PATH,
               [](gpointer) { static_cast<void>(::setsid()); }, nullptr, nullptr, nullptr,
               nullptr) != FALSE;
}

/// Asks over the bus, and waits until the application has opened them.
bool askToOpen(GAppInfo* application, GList* uris, GCancellable* cancellable) {
    OwnContext context;
    Owned<GAsyncResult> answer;
    g_app_info_launch_uris_async(
        application, uris, nullptr, cancellable,
        [](GObject*, GAsyncResult* result, gpointer waiting) {
            g_object_ref(result);
            static_cast<Owned<GAsyncResult>*>(waiting)->reset(result);
        },
        &answer);
    while (!answer) {
        context.serveNext();
    }
    return g_app_info_launch_uris_finish(application, answer.get(), nullptr) != FALSE;
}

bool openInOwnContext(std::string uri, GCancellable* cancellable) {
    // Hold the connection while GIO uses it; GIO would end the program if the session bus closed.
    const Owned<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable, nullptr));
    if (bus) {
        g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    }
    if (g_cancellable_is_cancelled(cancellable) != FALSE) {
        return false; // GIO's fallback may use the bus too, and cannot be cancelled
    }
    const Owned<GFile> file(g_file_new_for_uri(uri.c_str()));
    const Owned<GAppInfo> application(
        g_file_query_default_handler(file.get(), cancellable, nullptr));
    if (!application || g_cancellable_is_cancelled(cancellable) != FALSE) {
        return false;
    }
    GList uris{.data = uri.data(), .next = nullptr, .prev = nullptr};
    auto* const process = startedAsProcess(application.get());
    return process != nullptr ? startProcess(process, &uris)
                              : askToOpen(application.get(), &uris, cancellable);
}

} // namespace

bool openWithDefaultApplication(const std::string& uri, const Patience& patience) {
    if (patience.stop.stop_requested()) {
        return false;
    }
    const Owned<GCancellable> cancellable(g_cancellable_new());
    const std::stop_callback giveUp(patience.stop,
                                    [&] { g_cancellable_cancel(cancellable.get()); });
    // On a new thread: GIO defers work to the calling thread's context. A Qt thread's context may
    // never run again, and a thread without one defers to the main thread.
    auto opened = std::async(std::launch::async, openInOwnContext, uri, cancellable.get());
    if (opened.wait_for(patience.limit) == std::future_status::timeout) {
        g_cancellable_cancel(cancellable.get());
    }
    return opened.get();
}

} // namespace vantoro::desktop
