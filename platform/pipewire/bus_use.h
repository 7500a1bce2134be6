// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::pipewire {

/// A process that may not create real-time threads makes the sound library ask services on the
/// buses at each connection, and wait for half a minute or forever. Each connecting thread calls
/// `busesRespond` before that; if false, nobody is asked, and the sound thread gets normal
/// priority. Without this call they are always asked. Any thread.
void useBusesIf(bool (*busesRespond)());

/// Whether the library may use the buses now.
bool mayUseBuses();

} // namespace vantoro::pipewire
