// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::pipewire {

/// Where the system does not give this process real-time threads by itself, the sound library asks
/// services on the session's and the system's bus for them, at each new connection to the sound
/// server, and waits for each of their answers for half a minute, or for ever. `theyAnswer` is
/// called before, by whichever thread connects; false, and they are not asked: the thread that
/// takes the sound is an ordinary one then. Without this call they are asked always. Any thread.
void useBusesIf(bool (*theyAnswer)());

/// Whether the library may ask them now.
bool mayUseBuses();

} // namespace vantoro::pipewire
