// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::testing {

/// Changes the privacy settings; the destructor switches them back on.
class PrivacySwitch {
public:
    PrivacySwitch() = default;
    PrivacySwitch(const PrivacySwitch&) = delete;
    PrivacySwitch& operator=(const PrivacySwitch&) = delete;

    ~PrivacySwitch() { disableMicrophone(false); }

    static void disableMicrophone(bool disabled);
};

} // namespace vantoro::testing
