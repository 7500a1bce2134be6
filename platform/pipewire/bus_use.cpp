// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/bus_use.h"

#include <atomic>

namespace vantoro::pipewire {

namespace {

std::atomic<bool (*)()> answers = nullptr;

} // namespace

void useBusesIf(bool (*busesRespond)()) {
    answers = busesRespond;
}

bool mayUseBuses() {
    const auto ask = answers.load();
    return ask == nullptr || ask();
}

} // namespace vantoro::pipewire
