// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

struct sd_bus_vtable; // NOLINT(readability-identifier-naming): the name is the library's

namespace vantoro::desktop {

/// How panels read an `ItemMenu`, which the calls receive as their argument
/// (com.canonical.dbusmenu).
const sd_bus_vtable* menuCalls();

} // namespace vantoro::desktop
