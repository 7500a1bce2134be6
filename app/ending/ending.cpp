// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ending/ending.h"

#include <cerrno>
#include <chrono>
#include <utility>

#include <poll.h>
#include <unistd.h>

#include "l10n/texts/ending_texts.h"

namespace vantoro {

namespace {

EndingAccount::TimePoint timeNow() {
    return std::chrono::steady_clock::now();
}

EndingWork workOf(RecordingState::Case state) {
    using enum RecordingState::Case;
    return state == preparing                          ? EndingWork::start
           : state == recording || state == processing ? EndingWork::saving
                                                       : EndingWork::salvage;
}

std::string textOf(const EndingScene& scene, bool isImpatient) {
    if (scene.folder.empty()) {
        return {};
    }
    const auto cause = isImpatient ? EndingCause::askedAgain : EndingCause::standstill;
    return endingText(workOf(scene.state), cause, scene.folder.string(), scene.language);
}

} // namespace

Ending::Ending(StopSignals& signals, EndAtOnce endAtOnce)
    : signals_(signals),
      endAtOnce_(std::move(endAtOnce)),
      watcher_([this](const std::stop_token& stop) { watch(stop); }) {}

Ending::~Ending() {
    watcher_.request_stop();
    signals_.wake();
}

Ending::Handler::Handler(Ending& ending, std::function<void()> asked) : ending_(ending) {
    ending_.setHandler(std::move(asked));
}

Ending::Handler::~Handler() {
    ending_.setHandler(nullptr);
}

void Ending::setHandler(std::function<void()> asked) {
    const bool hasHandler = static_cast<bool>(asked);
    {
        const std::scoped_lock lock(askedMutex_);
        asked_ = std::move(asked);
    }
    const std::scoped_lock lock(mutex_);
    account_.setHasHandler(hasHandler);
    signals_.wake();
}

void Ending::userQuits() {
    const std::scoped_lock lock(mutex_);
    account_.recordRequest(EndingRequest::quitting, timeNow());
    signals_.wake();
}

void Ending::userStays() {
    const std::scoped_lock lock(mutex_);
    account_.quittingCalledOff();
}

// Needs no wake: postponing the deadline takes effect when the earlier one passes.
void Ending::progressed() {
    const std::scoped_lock lock(mutex_);
    account_.progressed(timeNow());
}

void Ending::progressed(EndingScene scene) {
    const std::scoped_lock lock(mutex_);
    scene_ = std::move(scene);
    account_.progressed(timeNow());
}

void Ending::concluded(int status) {
    const std::scoped_lock lock(mutex_);
    account_.concluded(status, timeNow());
    signals_.wake();
}

void Ending::watch(const std::stop_token& stop) {
    while (!stop.stop_requested()) {
        std::optional<StopSignals::Clock::time_point> deadline;
        {
            const std::scoped_lock lock(mutex_);
            deadline = hasEnded_ ? std::nullopt : account_.deadline();
        }
        const auto event = signals_.wait(deadline);
        if (event == StopSignals::Event::signal) {
            handleSignal(EndingRequest::signal);
        } else if (event == StopSignals::Event::hangUp) {
            handleSignal(EndingRequest::hangUp);
        }
        endIfDue();
    }
}

void Ending::handleSignal(EndingRequest request) {
    bool shouldNotify = false;
    {
        const std::scoped_lock lock(mutex_);
        shouldNotify = account_.recordRequest(request, timeNow());
    }
    const std::scoped_lock lock(askedMutex_);
    if (shouldNotify && asked_) {
        asked_();
    }
}

void Ending::endIfDue() {
    std::unique_lock lock(mutex_);
    if (hasEnded_ || account_.step(timeNow()) != EndingStep::endAtOnce) {
        return;
    }
    hasEnded_ = true;
    const int status = account_.status();
    const auto text = textOf(scene_, account_.isImpatient());
    lock.unlock();
    endAtOnce_(status, text);
}

void Ending::leaveProcess(int status, const std::string& text) {
    const auto line = (::isatty(STDERR_FILENO) == 1 ? "\r\x1b[K" : "") + text + "\n";
    pollfd standardError{STDERR_FILENO, POLLOUT, 0};
    if (!text.empty() && ::poll(&standardError, 1, 0) == 1) {
        // If nobody can read the message, there is nothing else to do.
        [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
    }
    ::_exit(status);
}

} // namespace vantoro
