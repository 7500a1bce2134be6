// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <stdexcept>

namespace vantoro::pipewire {

/// Why sound cannot be captured, or no longer can; the text is a sentence for the user.
class CaptureError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace vantoro::pipewire
