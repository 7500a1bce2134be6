// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::testing {

/// Gives the toolkit a theme that says it is dark, as some desktops' do, until destruction. Only
/// its private API can.
class DarkToolkit {
public:
    DarkToolkit();
    DarkToolkit(const DarkToolkit&) = delete;
    DarkToolkit& operator=(const DarkToolkit&) = delete;
    ~DarkToolkit();
};

} // namespace vantoro::testing
