// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/platform/desktop/power/slow_logind.h"

#include <stdexcept>

#include <fcntl.h>
#include <unistd.h>

#include <QtCore/QSocketNotifier>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusUnixFileDescriptor>

#include "tests/control/event_loop.h"

namespace vantoro::testing {

namespace {

const QString service = "org.freedesktop.login1";

std::array<int, 2> openPipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw std::runtime_error("no pipe");
    }
    return ends;
}

} // namespace

SlowLogind::SlowLogind(const PrivateBus& systemBus)
    : pipe_(openPipe()), service_(systemBus, service, [this](const QDBusMessage& question) {
          return inhibit(question);
      }) {}

SlowLogind::~SlowLogind() {
    answer();
    ::close(pipe_[0]);
}

bool SlowLogind::isEventuallyAsked(int times) const {
    return EventLoop::runUntil([&] { return asked_ >= times; });
}

void SlowLogind::prepareForSleep() {
    auto signal = QDBusMessage::createSignal("/org/freedesktop/login1",
                                             "org.freedesktop.login1.Manager", "PrepareForSleep");
    signal << true;
    QDBusConnection(service).send(signal);
}

bool SlowLogind::isHeld() const {
    char byte = 0;
    return ::read(pipe_[0], &byte, 1) < 0; // otherwise end of file
}

bool SlowLogind::isEventuallyReleased() const {
    bool closed = false;
    QSocketNotifier notifier(pipe_[0], QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, [&] {
        closed = true;
        notifier.setEnabled(false);
    });
    return EventLoop::runUntil([&] { return closed; });
}

QDBusMessage SlowLogind::inhibit(const QDBusMessage& question) {
    const bool sleep = question.arguments().value(0) == "sleep";
    if (sleep) {
        QMetaObject::invokeMethod(&mainThread_, [this] { ++asked_; }, Qt::QueuedConnection);
    }
    if (!sleep || handedOut_) {
        return question.createErrorReply(QDBusError::AccessDenied, "one is enough");
    }
    mayAnswer_.acquire();
    handedOut_ = true;
    const QDBusUnixFileDescriptor lock(pipe_[1]); // duplicates the descriptor
    ::close(pipe_[1]);
    return question.createReply(QVariant::fromValue(lock));
}

} // namespace vantoro::testing
