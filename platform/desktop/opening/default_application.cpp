// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/default_application.h"

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

/// A context for calls of this thread alone, as long as it lives.
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

/// The application's description where it is started as a process, and not asked over the bus.
GDesktopAppInfo* startedAsProcess(GAppInfo* application) {
    if (!G_IS_DESKTOP_APP_INFO(application)) {
        return nullptr;
    }
    auto* const description = G_DESKTOP_APP_INFO(application);
    return g_desktop_app_info_get_boolean(description, "DBusActivatable") != FALSE ? nullptr
                                                                                   : description;
}

bool startProcess(GDesktopAppInfo* application, GList* uris) {
    // In a session of its own, so that what ends our terminal's programs does not end it.
    return g_desktop_app_info_launch_uris_as_manager(
               application, uris, nullptr, G_SPAWN_SEARCH_PATH,
               [](gpointer) { static_cast<void>(::setsid()); }, nullptr, nullptr, nullptr,
               nullptr) != FALSE;
}

/// Waits for the application's word that it has opened them.
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

bool openInAContextOfItsOwn(std::string uri, GCancellable* cancellable) {
    // Held while GIO uses it, which would otherwise have the program end with the session bus.
    const Owned<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable, nullptr));
    if (bus) {
        g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
    }
    if (g_cancellable_is_cancelled(cancellable) != FALSE) {
        return false; // what comes next may want the bus as well, and could not be called off
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
    // On a new thread: GIO leaves things to be finished by the context of the thread that calls it.
    // That of a thread of Qt's may never be served again; a thread without one leaves them to the
    // main thread.
    auto opened = std::async(std::launch::async, openInAContextOfItsOwn, uri, cancellable.get());
    if (opened.wait_for(patience.limit) == std::future_status::timeout) {
        g_cancellable_cancel(cancellable.get());
    }
    return opened.get();
}

} // namespace vantoro::desktop
