// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "engine/recording_types.h"
#include "engine/sample_buffer.h"

namespace vantoro {

/// Receives a condition that differs from the one before, which is `delivering` at first. Called on
/// the capture queue.
using SourceConditionCallback =
    std::function<void(AudioLevelSource source, SourceCondition condition)>;

/// Notices sources of which nothing will be heard afterwards, while something can still be done
/// about it. Capture queue only; the callback may be empty.
class SourceWatch {
public:
    static constexpr double noticed = 10; ///< seconds

    void observe(const SampleBuffer& buffer, AudioLevelSource source,
                 const SourceConditionCallback& callback);
    /// What is known to keep a source from being recorded, `delivering` where nothing is.
    void setObstacle(AudioLevelSource source, SourceCondition obstacle,
                     const SourceConditionCallback& callback);

    /// For the next recording.
    void reset() noexcept { sources_ = {}; }

private:
    struct Source {
        std::int64_t silentFrames = 0; // up to now
        bool isSilent = false;
        SourceCondition obstacle = SourceCondition::delivering;
        SourceCondition told = SourceCondition::delivering;
    };

    Source& at(AudioLevelSource source) { return sources_.at(static_cast<std::size_t>(source)); }

    void tell(AudioLevelSource source, const SourceConditionCallback& callback);

    std::array<Source, 2> sources_; // by source
};

} // namespace vantoro
