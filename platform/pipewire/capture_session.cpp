// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/capture_session.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "capture/graph/channel_fold.h"
#include "capture/samples/frame_clock.h"

namespace vantoro::pipewire {

namespace {

constexpr std::chrono::seconds answerLimit{2};
constexpr std::chrono::seconds startLimit{5};
constexpr std::chrono::seconds tapStartLimit{1}; // a broken output must not block the others
constexpr std::chrono::milliseconds startingInterval{5};
constexpr std::chrono::milliseconds runningInterval{500};

} // namespace

CaptureSession::CaptureSession(CaptureRequest request, CaptureSettings settings,
                               std::shared_ptr<capture::CaptureDelivery> delivery,
                               CaptureStreamReceiver& receiver)
    : request_(std::move(request)),
      settings_(settings),
      delivery_(std::move(delivery)),
      receiver_(receiver),
      connection_({.lost = [this] { fail(Failure(FailureCode::connectionLost)); },
                   .identified = [this] { updateEvent_.request(); }}),
      updateEvent_(connection_.loop(), [this] { update(); }),
      timer_(connection_.loop(), [this] { tick(); }),
      mirror_(connection_.core(), [this] { updateEvent_.request(); }),
      linker_(connection_.core()) {}

CaptureSession::~CaptureSession() {
    {
        const LoopLock lock(connection_.threadLoop());
        end();
    }
    connection_.end();
}

void CaptureSession::start() {
    connection_.run();
    if (!connection_.awaitObjects(std::chrono::steady_clock::now() + answerLimit)) {
        throw Failure(FailureCode::serverSilent);
    }
    {
        const LoopLock lock(connection_.threadLoop());
        if (request_.microphone) {
            openMicrophone();
        }
        phase_ = Phase::starting;
        startedAt_ = std::chrono::steady_clock::now();
        timer_.setInterval(startingInterval);
        updateEvent_.request();
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
    auto stream = std::make_unique<InputStream>(
        connection_.core(), feed, channels, *delivery_,
        capture::framesInMilliseconds(settings_.deliveryInterval.count()),
        [this] { updateEvent_.request(); });
    delivery_->addFeed(std::move(feed));
    return stream;
}

void CaptureSession::update() {
    if (failure_ && phase_ != Phase::ended) {
        const bool wasRunning = phase_ == Phase::running;
        end();
        if (wasRunning) {
            receiver_.streamDidStop(std::make_exception_ptr(*failure_));
        } else {
            settled_.set();
        }
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
    capture::OwnNodes own;
    for (const auto& [output, tap] : taps_) {
        const auto node = tap->node();
        if (node && !orphans_.awaitsManager()) {
            own.tapOfOutput.emplace(output, *node);
        }
    }
    if (microphone_) { // so `followed_` is set too
        own.microphoneStream = microphone_->node();
        own.microphone = followed_->source();
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
            tap->checkRunning();
            ++entry;
        } else {
            close(tap);
            entry = taps_.erase(entry);
        }
    }
    for (const capture::Identity& output : present) {
        if (!taps_.contains(output)) {
            taps_.emplace(output,
                          makeStream(AudioLevelSource::systemAudio, capture::tapChannels.size()));
        }
    }
    const bool isCoded = request_.systemAudio && playsCodedSound(mirror_.graph());
    reportObstacle(AudioLevelSource::systemAudio,
                   isCoded ? SourceCondition::coded : SourceCondition::delivering);
}

void CaptureSession::updateMicrophone() {
    if (!followed_) {
        return;
    }
    using Presence = capture::FollowedMicrophone::Presence;
    const auto presence =
        followed_->update(mirror_.graph(), capture::nanosecondsOn(CLOCK_MONOTONIC));
    if (microphone_) {
        microphone_->checkRunning();
    }
    if (presence == Presence::gone) {
        throw Failure(FailureCode::microphoneDisconnected);
    }
    if (presence == Presence::here && (microphone_ || !orphans_.awaitsManager())) {
        recordMicrophone(followed_->source());
    } else if (presence == Presence::away && orphans_.awaitsManager()) {
        close(microphone_);
    }
}

void CaptureSession::recordMicrophone(const capture::Microphone& source) {
    const std::size_t inputs = portsOf(mirror_.graph(), source).size();
    if (!microphone_ && inputs > 0) { // a returning device may add its ports later
        microphone_ = makeStream(AudioLevelSource::microphone,
                                 std::min(inputs, capture::InputFold::maximumInputs));
    }
    const bool isMuted = mirror_.graph().nodes.at(source.device.id).mixer.isSilent();
    reportObstacle(AudioLevelSource::microphone,
                   isMuted ? SourceCondition::muted : SourceCondition::delivering);
}

void CaptureSession::reportObstacle(AudioLevelSource source, SourceCondition obstacle) {
    if (obstacle != std::exchange(obstacles_[source], obstacle)) {
        receiver_.obstacleDidChange(source, obstacle);
    }
}

void CaptureSession::close(std::unique_ptr<InputStream>& stream) {
    if (stream) {
        const auto feed = stream->feed();
        stream.reset();
        delivery_->removeFeed(feed);
    }
}

void CaptureSession::reopenAfterLostMemory() {
    // Read once: the sound thread may find another page missing at any time.
    const auto lost = posix::lostPages();
    if (lost == std::exchange(lostPages_, lost)) {
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

void CaptureSession::tick() {
    if (phase_ == Phase::starting) {
        checkStarted();
    } else if (phase_ == Phase::running) {
        if (linker_.forgetFailed() || orphans_.awaitsManager() || isMicrophoneAway()) {
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

bool CaptureSession::isMicrophoneAway() const {
    return followed_ && deviceOf(mirror_.graph(), followed_->source()) == nullptr;
}

bool CaptureSession::microphoneRuns() const {
    return !followed_ || (microphone_ && microphone_->hasSettled());
}

void CaptureSession::checkStarted() {
    const bool areAllTapped =
        !request_.systemAudio || taps_.size() == outputs(mirror_.graph()).size();
    const bool doTapsRun =
        std::chrono::steady_clock::now() - startedAt_ > tapStartLimit ||
        std::ranges::all_of(taps_, [](const auto& entry) { return entry.second->hasSettled(); });
    if (failure_ || !areAllTapped || !doTapsRun || !microphoneRuns()) {
        return;
    }
    phase_ = Phase::running;
    timer_.setInterval(runningInterval);
    std::vector<std::uint64_t> stamps{microphone_ ? microphone_->feed()->heardSince.load() : 0};
    for (const auto& [output, tap] : taps_) {
        stamps.push_back(tap->feed()->heardSince.load());
    }
    delivery_->begin(
        capture::captureBeginning(std::move(stamps), capture::nanosecondsOn(CLOCK_MONOTONIC)));
    settled_.set();
}

void CaptureSession::checkStalls() {
    using enum capture::CaptureWatch::Finding;
    capture::CaptureWatch::Observation observation{
        .isMicrophoneAway = isMicrophoneAway(),
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
    case nothing:
        break;
    case silentServer:
        return fail(Failure(FailureCode::serverSilent));
    case stalledMicrophone:
        return fail(Failure(FailureCode::microphoneStalled));
    case lostMicrophone:
        return fail(Failure(FailureCode::microphoneDisconnected));
    }
}

void CaptureSession::fail(Failure failure) {
    if (!failure_) {
        failure_ = std::move(failure);
    }
    // Streams must not be closed in their own callbacks, nor in the connection's.
    updateEvent_.request();
}

void CaptureSession::end() {
    if (phase_ != Phase::ended) {
        phase_ = Phase::ended;
        linker_.apply({}); // first: otherwise a source would be cut off abruptly
        microphone_.reset();
        taps_.clear();
        delivery_->finish();
    }
}

} // namespace vantoro::pipewire
