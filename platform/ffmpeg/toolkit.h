// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>

#include "engine/ports/file_system.h"
#include "engine/ports/media_toolkit.h"
#include "media/mix/following_mix.h"

namespace vantoro::ffmpeg {

/// Media files through the FFmpeg libraries, all bytes going through the file system given.
/// The libraries' own messages are switched off for the whole process: what goes wrong is in the
/// errors thrown. What the toolkit makes may outlive it, but not the file system.
class FfmpegToolkit final : public MediaToolkit {
public:
    explicit FfmpegToolkit(FileSystem& fileSystem, IsPowerSaved isPowerSaved = {});

    std::unique_ptr<FileWriter> makeWriter(const std::filesystem::path& location) override;
    /// Of a movie that is finished, or that nobody here writes: its mix is followed no further.
    std::unique_ptr<Asset> openAsset(const std::filesystem::path& location) override;
    std::unique_ptr<Composition> makeComposition() override;
    /// Null without an AAC coder, and for a composition without tracks or of another toolkit.
    std::unique_ptr<ExportSession> makeExportSession(const Composition& composition) override;

private:
    FileSystem& fileSystem_;
    std::shared_ptr<media::FollowingMixes> following_;
};

} // namespace vantoro::ffmpeg
