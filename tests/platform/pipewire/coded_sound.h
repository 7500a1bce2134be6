// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>

namespace vantoro::testing {

/// A receiver for encoded sound, which looks like any output, and a player that sends it some,
/// while this object lives.
class CodedSound {
public:
    CodedSound();
    CodedSound(const CodedSound&) = delete;
    CodedSound& operator=(const CodedSound&) = delete;
    ~CodedSound();

private:
    class Streams;
    std::unique_ptr<Streams> streams_;
};

} // namespace vantoro::testing
