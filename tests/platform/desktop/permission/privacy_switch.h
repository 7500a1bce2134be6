// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::testing {

/// The user's hand on the privacy settings; on again at the end.
class PrivacySwitch {
public:
    PrivacySwitch() = default;
    PrivacySwitch(const PrivacySwitch&) = delete;
    PrivacySwitch& operator=(const PrivacySwitch&) = delete;

    ~PrivacySwitch() { disableMicrophone(false); }

    static void disableMicrophone(bool disabled);
};

} // namespace vantoro::testing
