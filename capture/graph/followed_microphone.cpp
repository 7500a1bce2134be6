// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/followed_microphone.h"

#include <utility>

namespace vantoro::capture {

FollowedMicrophone::FollowedMicrophone(std::string name, Microphone source)
    : name_(std::move(name)), source_(std::move(source)) {}

FollowedMicrophone::Presence FollowedMicrophone::update(const Graph& graph,
                                                        std::uint64_t monotonic) {
    const bool isSame = deviceOf(graph, source_) != nullptr;
    if (const auto found = isSame ? source_ : findMicrophone(graph, name_)) {
        source_ = *found;
        awaySince_.reset();
        return Presence::here;
    }
    awaySince_ = awaySince_.value_or(monotonic);
    return monotonic - *awaySince_ < patience ? Presence::away : Presence::gone;
}

} // namespace vantoro::capture
