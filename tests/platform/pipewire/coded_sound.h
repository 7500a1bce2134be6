// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>

namespace vantoro::testing {

/// A receiver for coded sound, an output like any other to the desktop, and a player that sends it
/// some, while this lives.
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
