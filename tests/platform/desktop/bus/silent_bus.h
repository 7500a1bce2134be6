// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstring>
#include <stdexcept>
#include <string>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QtCore/QTemporaryDir>

namespace vantoro::testing {

/// A bus that hangs: accepts connections and never answers.
class SilentBus {
public:
    SilentBus() {
        sockaddr_un place{};
        place.sun_family = AF_UNIX;
        path_.copy(place.sun_path, sizeof(place.sun_path) - 1);
        if (::bind(socket_, reinterpret_cast<const sockaddr*>(&place), sizeof(place)) != 0 ||
            ::listen(socket_, 10) != 0) {
            ::close(socket_);
            throw std::runtime_error("cannot listen at " + path_);
        }
    }

    SilentBus(const SilentBus&) = delete;
    SilentBus& operator=(const SilentBus&) = delete;

    ~SilentBus() { ::close(socket_); }

    std::string address() const { return "unix:path=" + path_; }

    /// Whether there is a new connection; reports each once.
    bool isConnectedTo() const {
        const int client = ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
        return client >= 0 && ::close(client) == 0;
    }

private:
    QTemporaryDir folder_;
    std::string path_ = folder_.filePath("bus").toStdString();
    int socket_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
};

} // namespace vantoro::testing
