// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "engine/recording_types.h"
#include "engine/sample_buffer.h"

namespace vantoro {

/// Receives each change of a source's condition, which starts as `delivering`. Called on the
/// capture queue.
using SourceConditionCallback =
    std::function<void(AudioLevelSource source, SourceCondition condition)>;

/// Detects sources that deliver no sound while the user can still fix it. Capture queue only; the
/// callback may be empty.
class SourceWatch {
public:
    static constexpr double silenceLimit = 10; ///< seconds

    void observe(const SampleBuffer& buffer, AudioLevelSource source,
                 const SourceConditionCallback& callback);
    /// Sets the obstacle to recording a source; `delivering` if none.
    void setObstacle(AudioLevelSource source, SourceCondition obstacle,
                     const SourceConditionCallback& callback);

    void reset() noexcept { sources_ = {}; }

private:
    struct Source {
        std::int64_t silentFrames = 0; // latest run
        bool isSilent = false;
        SourceCondition obstacle = SourceCondition::delivering;
        SourceCondition reported = SourceCondition::delivering;
    };

    Source& at(AudioLevelSource source) { return sources_.at(static_cast<std::size_t>(source)); }

    void report(AudioLevelSource source, const SourceConditionCallback& callback);

    std::array<Source, 2> sources_; // by source
};

} // namespace vantoro
