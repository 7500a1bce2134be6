// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro {

/// From now on our own widgets tell assistive technologies what they are: the toolkit takes them
/// for widgets without a meaning, or counts their values in steps that mean nothing to a user.
/// Further calls do nothing. Main thread.
void describeParts();

} // namespace vantoro
