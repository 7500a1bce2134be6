// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <memory>
#include <new>
#include <string_view>

namespace vantoro::ffmpeg {

/// Ends a C object whose release function takes the address of the pointer to it.
template <auto releaseFunction>
struct Release {
    template <class Object>
    void operator()(Object* object) const noexcept {
        releaseFunction(&object);
    }
};

using CoderHandle = std::unique_ptr<AVCodecContext, Release<avcodec_free_context>>;
using PacketHandle = std::unique_ptr<AVPacket, Release<av_packet_free>>;
using FrameHandle = std::unique_ptr<AVFrame, Release<av_frame_free>>;

/// Passes a result on; throws std::runtime_error with the library's text where it is negative.
int check(int result, std::string_view action);

/// Passes a pointer on; throws std::bad_alloc where it is null.
template <class Object>
Object* checkAllocated(Object* object) {
    if (object == nullptr) {
        throw std::bad_alloc();
    }
    return object;
}

} // namespace vantoro::ffmpeg
