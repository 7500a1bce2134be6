// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

#include <QtWidgets/QWidget>

namespace vantoro::testing {

/// For messages: what it is, and what it says.
std::string describe(const QWidget& widget);

/// Every visible part fits its text, lies within its parent, and overlaps nothing. `picture` says
/// in messages what is looked at.
void expectNothingClipped(const QWidget& window, const std::string& picture);

} // namespace vantoro::testing
