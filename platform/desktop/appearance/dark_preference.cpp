// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/appearance/dark_preference.h"

#include <utility>

namespace vantoro::desktop {

namespace {

const std::string portal = "org.freedesktop.portal.Desktop";
const std::string path = "/org/freedesktop/portal/desktop";
const std::string settings = "org.freedesktop.portal.Settings";
const std::string appearance = "org.freedesktop.appearance";
const std::string colourScheme = "color-scheme";

} // namespace

DarkPreference::DarkPreference(const std::string& busAddress, std::function<void(bool)> changed)
    : changed_(std::move(changed)), bus_(busAddress), portal_(bus_, portal, [this] {
          if (!portal_.name()->empty()) {
              ask("ReadOne");
          }
      }) {
    bus_.listen("type='signal',sender='" + portal + "',path='" + path + "',interface='" + settings +
                    "',member='SettingChanged',arg0='" + appearance + "'",
                [this](BusMessage& signal) {
                    if (signal.sender() == portal_.name() && signal.readText() == appearance &&
                        signal.readText() == colourScheme) {
                        heard(signal);
                    }
                });
}

void DarkPreference::ask(const std::string& member) {
    bus_.call({.service = portal,
               .path = path,
               .interface = settings,
               .member = member,
               .startsService = false},
              {appearance, colourScheme}, [this, member](BusMessage& reply) {
                  if (!reply.isError()) {
                      heard(reply);
                  } else if (member == "ReadOne") {
                      ask("Read"); // the only one that older portals know
                  }
              });
}

void DarkPreference::heard(BusMessage& value) {
    constexpr std::uint32_t dark = 1;
    const auto preference = value.readNumberInVariant();
    if (preference && std::exchange(isDark_, *preference == dark) != isDark_) {
        changed_(isDark_);
    }
}

} // namespace vantoro::desktop
