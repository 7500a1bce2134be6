// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/network_module.h"

#include "update/record_request.h"

// NOLINTNEXTLINE(misc-use-internal-linkage): looked up by name
extern "C" const vantoro::NetworkModule vantoroNetworkModule{
    {.version = VANTORO_VERSION},
    [] { return vantoro::askOverNetwork(); },
};
