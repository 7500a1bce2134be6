// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/capture_session.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/pipewire/capture_error.h"
#include "platform/pipewire/frame_clock.h"

namespace vantoro::pipewire {

namespace {

using namespace std::chrono_literals;

constexpr auto answerLimit = 2s;
constexpr auto startLimit = 5s;
constexpr auto tapLimit = 1s; // an output that is broken must not keep the others from starting
constexpr auto startingInterval = 5ms;
constexpr auto runningInterval = 500ms;
constexpr int pauseLimit = 6; // ticks of the running interval

constexpr const char* lostText = "The connection to the sound server was lost.";
constexpr const char* silentServerText = "The sound server does not respond.";
constexpr const char* microphoneGoneText = "The microphone was disconnected.";
constexpr const char* microphoneStalledText = "The microphone no longer delivers sound.";

/// The first cycles after links were made are often cut short or late.
bool hasSettled(const InputStream& stream) {
    constexpr std::uint64_t cycles = 4;
    return stream.feed()->callbacks.load(std::memory_order_relaxed) >= cycles;
}

std::string endedText(const InputStream& stream) {
    const std::string text = "The sound server ended the recording";
    return stream.reason().empty() ? text + "." : text + ": " + stream.reason() + ".";
}

} // namespace

CaptureSession::CaptureSession(CaptureSettings settings, std::shared_ptr<CaptureDelivery> delivery,
                               Events events)
    : settings_(std::move(settings)),
      delivery_(std::move(delivery)),
      events_(std::move(events)),
      connection_(
          {.lost = [this] { fail(lostText); }, .identified = [this] { updateEvent_.request(); }}),
      updateEvent_(connection_.loop(), [this] { update(); }),
      timer_(connection_.loop(), [this] { tick(); }),
      mirror_(connection_.core(), [this] { updateEvent_.request(); }),
      linker_(connection_.core()) {}

CaptureSession::~CaptureSession() {
    {
        const LoopLock lock(connection_.threadLoop());
        if (phase_ != Phase::ended) {
            phase_ = Phase::ended;
            closeStreams();
            delivery_->finish();
        }
    }
    connection_.end();
}

void CaptureSession::start() {
    const Deadline answerBy = std::chrono::steady_clock::now() + answerLimit;
    connection_.run();
    // The first answer comes behind all objects, the second behind what they tell of themselves.
    if (!connection_.roundTrip(answerBy) || !connection_.roundTrip(answerBy)) {
        throw CaptureError(silentServerText);
    }
    {
        const LoopLock lock(connection_.threadLoop());
        open();
    }
    const bool settled = settled_.waitUntil(std::chrono::steady_clock::now() + startLimit);
    const LoopLock lock(connection_.threadLoop());
    if (!failure_.empty()) {
        throw CaptureError(failure_);
    }
    if (!settled) {
        throw CaptureError(microphone_ && !hasSettled(*microphone_)
                               ? "The microphone does not deliver any sound."
                               : "The recording could not be started in time.");
    }
}

void CaptureSession::open() {
    if (settings_.microphone) {
        openMicrophone();
    }
    phase_ = Phase::starting;
    startedAt_ = std::chrono::steady_clock::now();
    timer_.setInterval(startingInterval);
    updateEvent_.request();
}

void CaptureSession::openMicrophone() {
    const Graph& graph = mirror_.graph();
    const std::string& name = settings_.microphoneName.value_or(graph.defaultMicrophone);
    const auto source = findMicrophone(graph, name);
    if (!source) {
        throw CaptureError(settings_.microphoneName
                               ? "The microphone \"" + name + "\" was not found."
                               : "There is no default microphone.");
    }
    microphoneSource_ = {*source, graph.nodes.at(*source).serial};
    microphone_ = makeStream(CaptureSource::microphone);
}

std::unique_ptr<InputStream> CaptureSession::makeStream(CaptureSource source) {
    auto feed = std::make_shared<CaptureFeed>(source, settings_.longestStandstill);
    const InputStream::Wake wake{
        .frames =
            static_cast<std::size_t>(framesInMilliseconds(settings_.deliveryInterval.count())),
        .call = [](void* delivery) noexcept { static_cast<CaptureDelivery*>(delivery)->wake(); },
        .receiver = delivery_.get()};
    auto stream = std::make_unique<InputStream>(connection_.core(), feed, wake,
                                                [this] { updateEvent_.request(); });
    delivery_->addFeed(std::move(feed));
    return stream;
}

void CaptureSession::update() {
    if (!failure_.empty()) {
        endByItself();
    }
    if (phase_ != Phase::starting && phase_ != Phase::running) {
        return;
    }
    try {
        updateTaps();
    } catch (const CaptureError& error) {
        fail(error.what());
    }
    updateMicrophone();
    linker_.apply(
        wantedLinks(mirror_.graph(), connection_.self(), ownNodes(), settings_.excludesOwnSound));
}

void CaptureSession::updateTaps() {
    const auto present = settings_.systemAudio ? outputs(mirror_.graph()) : std::set<Identity>();
    for (auto entry = taps_.begin(); entry != taps_.end();) {
        auto& [output, tap] = *entry;
        if (present.contains(output)) {
            if (tap->state() == InputStream::State::ended) {
                fail(endedText(*tap));
            }
            ++entry;
            continue;
        }
        const auto feed = tap->feed();
        tap.reset();
        delivery_->removeFeed(feed);
        entry = taps_.erase(entry);
    }
    for (const Identity& output : present) {
        if (!taps_.contains(output)) {
            taps_.emplace(output, makeStream(CaptureSource::systemAudio));
        }
    }
}

void CaptureSession::updateMicrophone() {
    if (!microphone_) {
        return;
    }
    const Node* const source = findMicrophone(mirror_.graph(), microphoneSource_);
    if (source == nullptr) {
        fail(microphoneGoneText);
    } else if (microphone_->state() == InputStream::State::ended) {
        fail(endedText(*microphone_));
    } else {
        const auto ports = microphonePorts(mirror_.graph(), microphoneSource_).size();
        microphone_->setChannelsAddedUp(std::max<std::size_t>(1, ports));
        const bool isMuted = source->mixer.isSilent();
        if (isMuted != std::exchange(isMicrophoneMuted_, isMuted)) {
            events_.microphoneMuted(isMuted);
        }
    }
}

OwnNodes CaptureSession::ownNodes() const {
    OwnNodes own;
    for (const auto& [output, tap] : taps_) {
        if (const auto node = tap->node()) {
            own.tapOfOutput.emplace(output, *node);
        }
    }
    if (microphone_) {
        own.microphoneStream = microphone_->node();
        own.microphone = microphoneSource_;
    }
    return own;
}

void CaptureSession::tick() {
    if (phase_ == Phase::starting) {
        checkStarted();
    } else if (phase_ == Phase::running) {
        if (linker_.forgetFailed()) {
            updateEvent_.request();
        }
        for (const auto& [output, tap] : taps_) {
            tap->applySpeed();
        }
        if (microphone_) {
            microphone_->applySpeed();
        }
        // Where nothing is captured at all, silence goes on; otherwise little waits long.
        delivery_->wake();
        checkStalls();
    }
}

bool CaptureSession::allRun() const {
    const bool tapsRun =
        std::ranges::all_of(taps_, [](const auto& entry) { return hasSettled(*entry.second); });
    const bool goOnWithoutThem = std::chrono::steady_clock::now() - startedAt_ > tapLimit;
    return (tapsRun || goOnWithoutThem) && (!microphone_ || hasSettled(*microphone_));
}

void CaptureSession::checkStarted() {
    if (failure_.empty() &&
        (taps_.size() == outputs(mirror_.graph()).size() || !settings_.systemAudio) && allRun()) {
        phase_ = Phase::running;
        timer_.setInterval(runningInterval);
        delivery_->begin();
        settled_.set();
    }
}

void CaptureSession::checkStalls() {
    const std::uint64_t monotonic = nanosecondsOn(CLOCK_MONOTONIC);
    const std::uint64_t boottime = nanosecondsOn(CLOCK_BOOTTIME);
    std::uint64_t callbacks = 0;
    for (const auto& [output, tap] : taps_) {
        callbacks += tap->feed()->callbacks.load(std::memory_order_relaxed);
    }
    // With no output in the machine there is nothing to hear from.
    if (systemWatch_.update(callbacks, monotonic, boottime) && !taps_.empty()) {
        fail(silentServerText);
    }
    if (!microphone_) {
        return;
    }
    if (microphoneWatch_.update(microphone_->feed()->callbacks.load(std::memory_order_relaxed),
                                monotonic, boottime)) {
        fail(microphoneStalledText);
    }
    // A source that is still there may pause for a moment while links are made anew.
    ticksPaused_ = microphone_->state() == InputStream::State::paused ? ticksPaused_ + 1 : 0;
    if (ticksPaused_ >= pauseLimit) {
        fail(microphoneGoneText);
    }
}

void CaptureSession::fail(const std::string& sentence) {
    if (failure_.empty()) {
        failure_ = sentence;
    }
    // Streams are not closed within their own callbacks, nor within the connection's.
    updateEvent_.request();
}

void CaptureSession::endByItself() {
    const bool wasRunning = phase_ == Phase::running;
    if (phase_ == Phase::ended) {
        return;
    }
    phase_ = Phase::ended;
    closeStreams();
    delivery_->finish();
    if (wasRunning) {
        events_.stopped(std::make_exception_ptr(CaptureError(failure_)));
    } else {
        settled_.set();
    }
}

void CaptureSession::closeStreams() {
    // Links first: a source without a stream behind them would be cut off in a disorderly way.
    linker_.apply({});
    microphone_.reset();
    taps_.clear();
}

} // namespace vantoro::pipewire
