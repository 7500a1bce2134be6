// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/handles.h"

#include <array>
#include <string>

#include "engine/failure.h"

namespace vantoro::ffmpeg {

int check(int result, std::string_view action) {
    if (result >= 0) {
        return result;
    }
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(result, text.data(), text.size());
    throw Failure(FailureCode::codingFailed, std::string(action) + ": " + text.data());
}

} // namespace vantoro::ffmpeg
