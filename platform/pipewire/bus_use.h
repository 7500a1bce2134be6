// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::pipewire {

/// If this process may not create real-time threads itself, the sound library asks services on the
/// session and system bus, on each new connection to the sound server, and waits for each reply for
/// half a minute or forever. `busesRespond` is called before that, on the connecting thread; if it
/// returns false, the services are not asked, and the sound thread gets normal priority. Without
/// this call they are always asked. Any thread.
void useBusesIf(bool (*busesRespond)());

/// Whether the library may use the buses now.
bool mayUseBuses();

} // namespace vantoro::pipewire
