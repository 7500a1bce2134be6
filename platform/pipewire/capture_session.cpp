// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/capture_session.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "capture/graph/channel_fold.h"
#include "capture/samples/frame_clock.h"

namespace vantoro::pipewire {

namespace {

using namespace std::chrono_literals;

constexpr auto answerLimit = 2s;
constexpr auto startLimit = 5s;
constexpr auto tapStartLimit = 1s; // a broken output must not block the others
constexpr auto startingInterval = 5ms;
constexpr auto runningInterval = 500ms;

/// The first cycles after linking are often short or late, so a stream counts as running only after
/// a few. Sound heard meanwhile is kept.
bool hasSettled(const InputStream& stream) {
    constexpr std::uint64_t cycles = 4;
    return stream.feed()->callbacks.load(std::memory_order_relaxed) >= cycles;
}

Failure endOf(const InputStream& stream) {
    return stream.reason().empty() ? Failure(FailureCode::streamEnded)
                                   : Failure(FailureCode::streamEndedBecause, stream.reason());
}

} // namespace

CaptureSession::CaptureSession(CaptureRequest request, CaptureSettings settings,
                               std::shared_ptr<capture::CaptureDelivery> delivery, Events events)
    : request_(std::move(request)),
      settings_(settings),
      delivery_(std::move(delivery)),
      events_(std::move(events)),
      connection_({.lost = [this] { fail(Failure(FailureCode::connectionLost)); },
                   .identified = [this] { updateEvent_.request(); }}),
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
    // The first reply follows all objects, the second their details.
    if (!connection_.roundTrip(answerBy) || !connection_.roundTrip(answerBy)) {
        throw Failure(FailureCode::serverSilent);
    }
    {
        const LoopLock lock(connection_.threadLoop());
        open();
    }
    const bool settled = settled_.waitUntil(std::chrono::steady_clock::now() + startLimit);
    const LoopLock lock(connection_.threadLoop());
    if (failure_) {
        throw Failure(*failure_);
    }
    if (!settled) {
        throw Failure(microphoneRuns() ? FailureCode::captureNotStarted
                                       : FailureCode::microphoneSilent);
    }
}

void CaptureSession::open() {
    if (request_.microphone) {
        openMicrophone();
    }
    phase_ = Phase::starting;
    startedAt_ = std::chrono::steady_clock::now();
    timer_.setInterval(startingInterval);
    updateEvent_.request();
}

void CaptureSession::openMicrophone() {
    const capture::Graph& graph = mirror_.graph();
    const std::string& name = request_.microphoneID.value_or(graph.defaultMicrophone);
    const auto source = findMicrophone(graph, name);
    if (!source) {
        throw request_.microphoneID ? Failure(FailureCode::microphoneUnknown, name)
                                    : Failure(FailureCode::noDefaultMicrophone);
    }
    followed_.emplace(name, *source);
    recordMicrophone(*source);
}

std::unique_ptr<InputStream> CaptureSession::makeStream(AudioLevelSource source,
                                                        std::size_t channels) {
    auto feed = std::make_shared<capture::CaptureFeed>(source, settings_.longestStall);
    const InputStream::Wake wake{.frames = static_cast<std::size_t>(capture::framesInMilliseconds(
                                     settings_.deliveryInterval.count())),
                                 .call =
                                     [](void* delivery) noexcept {
                                         static_cast<capture::CaptureDelivery*>(delivery)->wake();
                                     },
                                 .receiver = delivery_.get()};
    auto stream = std::make_unique<InputStream>(connection_.core(), feed, channels, wake,
                                                [this] { updateEvent_.request(); });
    delivery_->addFeed(std::move(feed));
    return stream;
}

void CaptureSession::update() {
    if (failure_) {
        stopUnexpectedly();
    }
    if (phase_ != Phase::starting && phase_ != Phase::running) {
        return;
    }
    orphans_.update(mirror_.graph(), capture::nanosecondsOn(CLOCK_MONOTONIC));
    if (orphans_.awaitsManager()) {
        updateLinks(); // before the streams are closed
    }
    try {
        updateTaps();
        updateMicrophone();
    } catch (const Failure& failure) {
        fail(failure);
    }
    updateLinks();
}

void CaptureSession::updateLinks() {
    auto own = ownNodes();
    if (orphans_.awaitsManager()) {
        own.tapOfOutput.clear();
    }
    auto links = wantedLinks(mirror_.graph(), connection_.self(), own, settings_.excludesOwnSound);
    orphans_.removeOrphans(links, mirror_.graph());
    linker_.apply(links);
}

void CaptureSession::updateTaps() {
    const bool areWanted = request_.systemAudio && !orphans_.awaitsManager();
    const auto present = areWanted ? outputs(mirror_.graph()) : std::set<capture::Identity>();
    for (auto entry = taps_.begin(); entry != taps_.end();) {
        auto& [output, tap] = *entry;
        if (present.contains(output)) {
            if (tap->state() == InputStream::State::ended) {
                fail(endOf(*tap));
            }
            ++entry;
            continue;
        }
        close(tap);
        entry = taps_.erase(entry);
    }
    for (const capture::Identity& output : present) {
        if (!taps_.contains(output)) {
            taps_.emplace(output,
                          makeStream(AudioLevelSource::systemAudio, capture::tapChannels.size()));
        }
    }
    reportObstacle(AudioLevelSource::systemAudio,
                   request_.systemAudio && playsCodedSound(mirror_.graph())
                       ? SourceCondition::coded
                       : SourceCondition::delivering);
}

void CaptureSession::updateMicrophone() {
    if (!followed_) {
        return;
    }
    using Presence = capture::FollowedMicrophone::Presence;
    const auto presence =
        followed_->update(mirror_.graph(), capture::nanosecondsOn(CLOCK_MONOTONIC));
    if (microphone_ && microphone_->state() == InputStream::State::ended) {
        fail(endOf(*microphone_));
    } else if (presence == Presence::gone) {
        fail(Failure(FailureCode::microphoneDisconnected));
    } else if (presence == Presence::away) {
        if (orphans_.awaitsManager()) {
            close(microphone_);
        }
    } else if (microphone_ || !orphans_.awaitsManager()) {
        recordMicrophone(followed_->source());
    }
}

void CaptureSession::recordMicrophone(const capture::Microphone& source) {
    const capture::Graph& graph = mirror_.graph();
    const std::size_t inputs = portsOf(graph, source).size();
    if (!microphone_ && inputs > 0) { // a returning device may add its ports later
        microphone_ = makeStream(AudioLevelSource::microphone,
                                 std::min(inputs, capture::InputFold::maximumInputs));
    }
    reportObstacle(AudioLevelSource::microphone, graph.nodes.at(source.device.id).mixer.isSilent()
                                                     ? SourceCondition::muted
                                                     : SourceCondition::delivering);
}

void CaptureSession::reportObstacle(AudioLevelSource source, SourceCondition obstacle) {
    SourceCondition& reported =
        source == AudioLevelSource::microphone ? microphoneObstacle_ : systemObstacle_;
    if (obstacle != std::exchange(reported, obstacle)) {
        events_.obstacleChanged(source, obstacle);
    }
}

void CaptureSession::close(std::unique_ptr<InputStream>& stream) {
    if (stream) {
        const auto feed = stream->feed();
        stream.reset();
        delivery_->removeFeed(feed);
    }
}

capture::OwnNodes CaptureSession::ownNodes() const {
    capture::OwnNodes own;
    for (const auto& [output, tap] : taps_) {
        if (const auto node = tap->node()) {
            own.tapOfOutput.emplace(output, *node);
        }
    }
    if (microphone_) { // so `followed_` is set too
        own.microphoneStream = microphone_->node();
        own.microphone = followed_->source();
    }
    return own;
}

void CaptureSession::tick() {
    if (phase_ == Phase::starting) {
        checkStarted();
    } else if (phase_ == Phase::running) {
        if (linker_.forgetFailed() || orphans_.awaitsManager() ||
            (followed_ && !isMicrophonePresent())) {
            updateEvent_.request();
        }
        reopenAfterLostMemory();
        for (const auto& [output, tap] : taps_) {
            tap->applySpeed();
        }
        if (microphone_) {
            microphone_->applySpeed();
        }
        // Keeps silence coming if nothing is captured, and delivers small remainders.
        delivery_->wake();
        checkStalls();
    }
}

void CaptureSession::reopenAfterLostMemory() {
    if (lostPages() == std::exchange(lostPages_, lostPages())) {
        return;
    }
    // Which stream read them is not known.
    close(microphone_);
    for (auto& [output, tap] : taps_) {
        close(tap);
    }
    taps_.clear();
    updateEvent_.request();
}

bool CaptureSession::isMicrophonePresent() const {
    return deviceOf(mirror_.graph(), followed_->source()) != nullptr;
}

bool CaptureSession::microphoneRuns() const {
    return !followed_ || (microphone_ && hasSettled(*microphone_));
}

bool CaptureSession::allStreamsRun() const {
    const bool tapsRun =
        std::ranges::all_of(taps_, [](const auto& entry) { return hasSettled(*entry.second); });
    const bool ignoreTaps = std::chrono::steady_clock::now() - startedAt_ > tapStartLimit;
    return (tapsRun || ignoreTaps) && microphoneRuns();
}

std::int64_t CaptureSession::startPosition() const {
    std::vector<std::uint64_t> stamps{microphone_ ? microphone_->feed()->heardSince.load() : 0};
    for (const auto& [output, tap] : taps_) {
        stamps.push_back(tap->feed()->heardSince.load());
    }
    return capture::captureBeginning(std::move(stamps), capture::nanosecondsOn(CLOCK_MONOTONIC));
}

void CaptureSession::checkStarted() {
    if (!failure_ && (taps_.size() == outputs(mirror_.graph()).size() || !request_.systemAudio) &&
        allStreamsRun()) {
        phase_ = Phase::running;
        timer_.setInterval(runningInterval);
        delivery_->begin(startPosition());
        settled_.set();
    }
}

void CaptureSession::checkStalls() {
    capture::CaptureWatch::Observation observation{
        .isMicrophoneAway = followed_ && !isMicrophonePresent(),
        .monotonic = capture::nanosecondsOn(CLOCK_MONOTONIC),
        .boottime = capture::nanosecondsOn(CLOCK_BOOTTIME)};
    for (const auto& [output, tap] : taps_) {
        observation.tapCallbacks = observation.tapCallbacks.value_or(0) + tap->feed()->callbacks;
    }
    if (microphone_) {
        observation.microphoneCallbacks = microphone_->feed()->callbacks;
        observation.isMicrophonePaused = microphone_->state() == InputStream::State::paused;
    }
    switch (watch_.update(observation)) {
    case capture::CaptureWatch::Finding::nothing:
        break;
    case capture::CaptureWatch::Finding::silentServer:
        fail(Failure(FailureCode::serverSilent));
        break;
    case capture::CaptureWatch::Finding::stalledMicrophone:
        fail(Failure(FailureCode::microphoneStalled));
        break;
    case capture::CaptureWatch::Finding::lostMicrophone:
        fail(Failure(FailureCode::microphoneDisconnected));
        break;
    }
}

void CaptureSession::fail(Failure failure) {
    if (!failure_) {
        failure_ = std::move(failure);
    }
    // Streams must not be closed in their own callbacks, nor in the connection's.
    updateEvent_.request();
}

void CaptureSession::stopUnexpectedly() {
    const bool wasRunning = phase_ == Phase::running;
    if (phase_ == Phase::ended) {
        return;
    }
    phase_ = Phase::ended;
    closeStreams();
    delivery_->finish();
    if (wasRunning) {
        events_.stopped(std::make_exception_ptr(*failure_));
    } else {
        settled_.set();
    }
}

void CaptureSession::closeStreams() {
    // Links first: otherwise a source would be cut off abruptly.
    linker_.apply({});
    microphone_.reset();
    taps_.clear();
}

} // namespace vantoro::pipewire
