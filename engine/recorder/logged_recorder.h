// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "engine/ports/clock.h"
#include "engine/ports/recording_log.h"
#include "engine/recorder/recorder.h"

namespace vantoro {

/// Another recorder, of which everything that happens to its recordings goes to the log. There a
/// recording has the local time of its start as its name.
class LoggedRecorder final : public Recorder {
public:
    /// The log and the clock must outlive this.
    LoggedRecorder(std::unique_ptr<Recorder> recorder, RecordingLog& log, const Clock& clock);

    void start(const RecordingOptions& options) override;

    void expectVolumes(float systemVolume, float microphoneVolume) override {
        recorder_->expectVolumes(systemVolume, microphoneVolume);
    }

    void mark(std::string text) override { recorder_->mark(std::move(text)); }

    std::filesystem::path stop(float systemVolume, float microphoneVolume) override;

    bool hasKeptRecording() const noexcept override { return recorder_->hasKeptRecording(); }

    SalvageResult recoverIncompleteRecordings(const std::filesystem::path& folder,
                                              const std::optional<TrackNames>& trackNames,
                                              const std::stop_token& stop) override;

private:
    void followCallbacks();
    void write(RecordingLog::Level level, const std::string& message);

    RecordingLog& log_;
    const Clock& clock_;
    std::string recording_;              ///< set by `start`, before anything can call back
    std::unique_ptr<Recorder> recorder_; // last: its callbacks use the others
};

/// What the log says of a salvage; also for one without a recorder.
void logSalvage(RecordingLog& log, const SalvageResult& result);

} // namespace vantoro
