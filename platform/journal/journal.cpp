// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/journal/journal.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <string_view>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>

#include "platform/posix/file_descriptor.h"

namespace vantoro::journal {

namespace {

/// A value ends with its line.
std::string field(std::string_view name, std::string value) {
    std::ranges::replace(value, '\n', ' ');
    return std::string(name) + "=" + value + "\n";
}

enum class Sending : std::uint8_t { done, noJournal };

/// Each entry has a socket of its own: they are rare, and the journal may start again in between.
Sending send(const std::filesystem::path& path, const std::string& entry) {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    if (path.native().size() >= sizeof address.sun_path) {
        return Sending::noJournal;
    }
    std::memcpy(address.sun_path, path.c_str(), path.native().size());
    const posix::FileDescriptor socket(
        ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const auto sent =
        ::sendto(socket.get(), entry.data(), entry.size(), MSG_NOSIGNAL,
                 reinterpret_cast<const sockaddr*>(&address), sizeof address); // NOLINT: its type
    return sent < 0 && errno != EAGAIN ? Sending::noJournal : Sending::done;
}

} // namespace

Journal::Journal(WithoutJournal withoutJournal, std::filesystem::path socket)
    : withoutJournal_(withoutJournal), socket_(std::move(socket)) {}

void Journal::write(Level level, const std::string& message,
                    const std::string& recording) noexcept {
    try {
        auto entry = field("PRIORITY", std::to_string(static_cast<int>(level))) +
                     field("SYSLOG_IDENTIFIER", identifier) + field("MESSAGE", message);
        if (!recording.empty()) {
            entry += field("VANTORO_RECORDING", recording);
        }
        if (send(socket_, entry) == Sending::noJournal &&
            withoutJournal_ == WithoutJournal::printFaults && level <= Level::warning) {
            std::cerr << "vantoro: " + message + "\n";
        }
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
        // Nobody would read that the log has failed.
    }
}

} // namespace vantoro::journal
