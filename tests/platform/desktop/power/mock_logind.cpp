// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/platform/desktop/power/mock_logind.h"

#include <csignal>
#include <stdexcept>

#include <QtCore/QDeadlineTimer>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusServiceWatcher>

#include "tests/control/event_loop.h"

namespace vantoro::testing {

namespace {

const QString service = "org.freedesktop.login1";
const QString manager = "org.freedesktop.login1.Manager";
const QString connectionName = "asking the login manager";

/// It first prints its process ID.
std::FILE* startProcess(const QString& busAddress) {
    // Ends even if the test crashes. Uses the distribution's Python, which has the package.
    const auto command = "echo $$; DBUS_SYSTEM_BUS_ADDRESS='" + busAddress +
                         "' exec setpriv --pdeathsig KILL /usr/bin/python3 -m dbusmock "
                         "--template logind >/dev/null";
    return ::popen(command.toUtf8().constData(), "r");
}

} // namespace

MockLogind::MockLogind(const PrivateBus& systemBus) : bus_(systemBus.connect(connectionName)) {
    QDBusServiceWatcher watcher(service, bus_, QDBusServiceWatcher::WatchForRegistration);
    bool appeared = false;
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceRegistered, [&] { appeared = true; });
    output_ = startProcess(systemBus.address());
    if (output_ == nullptr || std::fscanf(output_, "%d", &process_) != 1) {
        throw std::runtime_error("the login manager cannot be started");
    }
    if (!EventLoop::runUntil([&] { return appeared; }, patience)) {
        ::kill(process_, SIGKILL);
        throw std::runtime_error("the login manager did not start");
    }
}

MockLogind::~MockLogind() {
    ::kill(process_, SIGKILL);
    ::pclose(output_); // waits for its exit
    QDBusConnection::disconnectFromBus(connectionName);
}

QStringList MockLogind::inhibitors() const {
    const auto reply = call(manager, "ListInhibitors", {});
    const auto list = reply.arguments().constFirst().value<QDBusArgument>();
    QStringList found;
    list.beginArray();
    while (!list.atEnd()) {
        QString what;
        QString who;
        QString why;
        QString mode;
        list.beginStructure();
        list >> what >> who >> why >> mode;
        list.endStructure();
        found << QStringList{what, who, why, mode}.join(", ");
    }
    list.endArray();
    found.sort();
    return found;
}

bool MockLogind::eventuallyHas(const QStringList& expected) const {
    const QDeadlineTimer deadline(patience);
    bool has = inhibitors() == expected;
    while (!has && !deadline.hasExpired()) {
        has = inhibitors() == expected;
    }
    return has;
}

void MockLogind::prepareForSleep(bool sleeping) const {
    call("org.freedesktop.DBus.Mock", "EmitSignal",
         {manager, "PrepareForSleep", "b", QVariantList{sleeping}});
}

void MockLogind::prepareForShutdown(bool shuttingDown) const {
    call("org.freedesktop.DBus.Mock", "EmitSignal",
         {manager, "PrepareForShutdown", "b", QVariantList{shuttingDown}});
}

QDBusMessage MockLogind::call(const QString& interface, const QString& method,
                              const QVariantList& arguments) const {
    auto question =
        QDBusMessage::createMethodCall(service, "/org/freedesktop/login1", interface, method);
    question.setArguments(arguments);
    // Runs the event loop. A blocking call that does so misses a reply that arrives before it
    // listens, and hangs.
    const QDBusPendingCallWatcher watcher(bus_.asyncCall(question));
    if (!EventLoop::runUntil([&] { return watcher.isFinished(); }, patience)) {
        throw std::runtime_error("the login manager does not answer");
    }
    auto reply = watcher.reply();
    if (reply.type() != QDBusMessage::ReplyMessage) {
        throw std::runtime_error(reply.errorMessage().toStdString());
    }
    return reply;
}

} // namespace vantoro::testing
