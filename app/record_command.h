#pragma once

#include <filesystem>

#include "app/command_line.h"
#include "app/stop_signals.h"
#include "engine/audio_recorder.h"

namespace vantoro {

/// Makes one recording: until its time has passed, a signal came, or capture broke. Prints the
/// final file's path on standard output and all else on standard error. Returns the exit status:
/// 0 when a file was saved, else 1.
int runRecordCommand(const RecordCommand& command, const std::filesystem::path& defaultFolder,
                     AudioRecorder& recorder, StopSignals& signals);

} // namespace vantoro
