// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "capture/graph/microphones.h"
#include "capture/graph/orphaned_streams.h"
#include "capture/samples/capture_delivery.h"
#include "capture/samples/capture_watch.h"
#include "engine/failure.h"
#include "platform/pipewire/connection.h"
#include "platform/pipewire/event_flag.h"
#include "platform/pipewire/graph_mirror.h"
#include "platform/pipewire/input_stream.h"
#include "platform/pipewire/linker.h"
#include "platform/pipewire/loop_sources.h"
#include "platform/pipewire/pipewire_capture.h"
#include "platform/posix/lost_memory.h"

namespace vantoro::pipewire {

/// One capture from start to stop: the connection, its streams and links. Create, start and destroy
/// it on a task thread or a queue's thread; everything else runs on the connection's loop.
class CaptureSession {
public:
    /// Throws `Failure` if there is no server. `delivery` receives the feeds, and `receiver` on the
    /// loop the obstacles, and the error if capture stops on its own.
    CaptureSession(CaptureRequest request, CaptureSettings settings,
                   std::shared_ptr<capture::CaptureDelivery> delivery,
                   CaptureStreamReceiver& receiver);
    CaptureSession(const CaptureSession&) = delete;
    CaptureSession& operator=(const CaptureSession&) = delete;
    /// Stops if still running, and finishes `delivery`. Calls nothing afterwards.
    ~CaptureSession();

    /// Returns once capture runs. Throws `Failure` if it fails or takes longer than about 5
    /// seconds.
    void start();

private:
    enum class Phase : std::uint8_t { preparing, starting, running, ended };

    // On the loop, or under its lock.
    void openMicrophone();
    std::unique_ptr<InputStream> makeStream(AudioLevelSource source, std::size_t channels);
    void update();
    void updateLinks();
    void updateTaps();
    void updateMicrophone();
    void recordMicrophone(const capture::Microphone& source);
    void close(std::unique_ptr<InputStream>& stream);
    void reopenAfterLostMemory();
    bool isMicrophoneAway() const;
    void reportObstacle(AudioLevelSource source, SourceCondition obstacle);
    void tick();
    void checkStarted();
    void checkStalls();
    bool microphoneRuns() const;
    void fail(Failure failure);
    void end();

    const CaptureRequest request_;
    const CaptureSettings settings_;
    const std::shared_ptr<capture::CaptureDelivery> delivery_;
    CaptureStreamReceiver& receiver_;
    Phase phase_ = Phase::preparing;
    std::optional<Failure> failure_;
    EventFlag settled_; // started or failed
    Deadline startedAt_;
    std::optional<capture::FollowedMicrophone> followed_;   // if a microphone is recorded
    std::map<AudioLevelSource, SourceCondition> obstacles_; // as reported; none if missing
    capture::CaptureWatch watch_;
    std::uint64_t lostPages_ = posix::lostPages();

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
