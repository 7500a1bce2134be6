// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <vector>

#include "media/codec/aac.h"

/// Headers of sound tracks, whole and damaged, as far as they tell how the packets are encoded.
namespace vantoro::testing::made_up {

using Bytes = std::vector<std::byte>;

inline constexpr int bitRate = 192000;
inline constexpr std::uint8_t mpeg4Sound = 0x40;

Bytes bytesOf(std::initializer_list<unsigned> values);
Bytes operator+(Bytes first, const Bytes& second);
Bytes box(const char* type, const Bytes& content);

/// The decoder's configuration for LC at 48000 Hz in two channels.
Bytes stereo();
/// The fields of three kinds of boxes and descriptors, before what is in those.
Bytes versionAndFlags();
Bytes streamFields();
Bytes decoderFields(unsigned objectType = mpeg4Sound);

/// A descriptor whose length takes so many bytes, and is wrong by `excess`.
Bytes descriptor(unsigned tag, const Bytes& content, unsigned lengthBytes = 4, int excess = 0);
/// An `esds` box around what is in a stream's descriptor.
Bytes streamBox(const Bytes& content);
/// A whole `esds` box.
Bytes streamOf(const Bytes& configuration, unsigned objectType = mpeg4Sound,
               unsigned lengthBytes = 4);
/// A sample description of a QuickTime version with boxes behind its fields.
Bytes description(unsigned version, const Bytes& boxes, const char* type = "mp4a");
/// What a track's header holds around its descriptions.
Bytes informationOf(const Bytes& descriptions);

/// How a single track of sound is encoded, as `readCodecs` tells.
std::optional<media::AacTrack> codecOf(const Bytes& information);
/// Whether `readCodecs` throws DamagedMovie.
bool isRefused(const Bytes& information);
/// Fails the test unless it is `stereo` at the bit rate.
void expectStereo(const std::optional<media::AacTrack>& codec);

} // namespace vantoro::testing::made_up
