// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro {

/// Makes this program's own widgets accessible. By default the toolkit gives them no role, or
/// reports their values in internal units. Further calls do nothing. Main thread.
void describeParts();

} // namespace vantoro
