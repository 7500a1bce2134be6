// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro {

/// Tells screen readers the roles of this program's own widgets, and their values in percent.
/// Further calls do nothing. Main thread.
void describeParts();

} // namespace vantoro
