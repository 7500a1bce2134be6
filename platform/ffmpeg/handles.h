// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <array>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "engine/failure.h"

namespace vantoro::ffmpeg {

/// Deletes a C object whose release function takes a pointer to the object's pointer.
template <auto releaseFunction>
struct Release {
    template <class Object>
    void operator()(Object* object) const noexcept {
        releaseFunction(&object);
    }
};

using CodecHandle = std::unique_ptr<AVCodecContext, Release<avcodec_free_context>>;
using PacketHandle = std::unique_ptr<AVPacket, Release<av_packet_free>>;
using FrameHandle = std::unique_ptr<AVFrame, Release<av_frame_free>>;

/// Returns the result; throws std::runtime_error with the library's text if it is negative.
inline int check(int result, std::string_view action) {
    if (result >= 0) {
        return result;
    }
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(result, text.data(), text.size());
    throw Failure(FailureCode::codecFailed, std::string(action) + ": " + text.data());
}

/// Returns the pointer; throws std::bad_alloc if it is null.
template <class Object>
Object* checkAllocated(Object* object) {
    if (object == nullptr) {
        throw std::bad_alloc();
    }
    return object;
}

} // namespace vantoro::ffmpeg
