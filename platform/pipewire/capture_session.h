// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "capture/graph/followed_microphone.h"
#include "capture/graph/orphaned_streams.h"
#include "capture/samples/capture_delivery.h"
#include "capture/samples/capture_watch.h"
#include "engine/failure.h"
#include "platform/pipewire/capture_service.h"
#include "platform/pipewire/connection.h"
#include "platform/pipewire/event_flag.h"
#include "platform/pipewire/graph_mirror.h"
#include "platform/pipewire/input_stream.h"
#include "platform/pipewire/linker.h"
#include "platform/pipewire/loop_sources.h"

namespace vantoro::pipewire {

/// One run of capture: the connection, the streams and the links, from start to stop.
///
/// Made, started and destroyed by a task thread, or the thread of a queue; everything else happens
/// on the connection's loop.
class CaptureSession {
public:
    /// Told on the loop.
    struct Events {
        /// Why capture has stopped by itself; once at most.
        std::function<void(std::exception_ptr error)> stopped;
        /// As `CaptureStreamReceiver::obstacleDidChange`.
        std::function<void(AudioLevelSource source, SourceCondition obstacle)> obstacleChanged;
    };

    /// Throws `Failure` when there is no server. `delivery` is handed the feeds.
    CaptureSession(CaptureRequest request, CaptureSettings settings,
                   std::shared_ptr<capture::CaptureDelivery> delivery, Events events);
    CaptureSession(const CaptureSession&) = delete;
    CaptureSession& operator=(const CaptureSession&) = delete;
    /// Stops where it has not stopped: `delivery` is told to finish. No event is told any more.
    ~CaptureSession();

    /// Returns when capture runs. Throws `Failure` when it does not within 5 seconds or so.
    void start();

private:
    enum class Phase : std::uint8_t { preparing, starting, running, ended };

    // On the loop, or under its lock.
    void open();
    void openMicrophone();
    std::unique_ptr<InputStream> makeStream(AudioLevelSource source, std::size_t channels);
    void update();
    void updateLinks();
    void updateTaps();
    void updateMicrophone();
    void hearMicrophone(const capture::Microphone& source);
    void close(std::unique_ptr<InputStream>& stream);
    bool isMicrophoneThere() const;
    void tellObstacle(AudioLevelSource source, SourceCondition obstacle);
    void tick();
    void checkStarted();
    void checkStalls();
    bool microphoneRuns() const;
    bool allRun() const;
    std::int64_t beginning() const;
    capture::OwnNodes ownNodes() const;
    void fail(Failure failure);
    void endByItself();
    void closeStreams();

    const CaptureRequest request_;
    const CaptureSettings settings_;
    const std::shared_ptr<capture::CaptureDelivery> delivery_;
    const Events events_;
    Phase phase_ = Phase::preparing;
    std::optional<Failure> failure_;
    EventFlag settled_; // started, or failed to
    Deadline startedAt_;
    std::optional<capture::FollowedMicrophone> followed_; // where a microphone is wanted
    SourceCondition systemObstacle_ = SourceCondition::delivering;
    SourceCondition microphoneObstacle_ = SourceCondition::delivering;
    capture::CaptureWatch watch_;

    Connection connection_;
    LoopEvent updateEvent_;
    LoopTimer timer_;
    GraphMirror mirror_;
    capture::OrphanedStreams orphans_;
    Linker linker_;
    std::map<capture::Identity, std::unique_ptr<InputStream>> taps_; // by output
    std::unique_ptr<InputStream> microphone_;
};

} // namespace vantoro::pipewire
