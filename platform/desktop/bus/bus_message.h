// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <QtDBus/QDBusUnixFileDescriptor>

struct sd_bus_message;

namespace vantoro::desktop {

/// A table of named texts, the form in which optional arguments are passed.
using BusOptions = std::vector<std::pair<std::string, std::string>>;
using BusArgument = std::variant<std::string, std::uint32_t, BusOptions>;

/// False when they cannot be sent.
bool append(sd_bus_message* message, const std::vector<BusArgument>& arguments);

/// A reply or a signal, for as long as the function runs that it is given to. Main thread.
class BusMessage {
public:
    explicit BusMessage(sd_bus_message* message) : message_(message) {}

    bool isError() const;
    /// The sender's name: the bus sees to it that nobody bears another's.
    std::string sender() const;

    /// Each reads the next argument: nothing where there is none of this kind.
    std::optional<std::string> readText();
    std::optional<std::string> readPath();
    std::optional<bool> readFlag();
    /// A flag in a variant, as the value of a property is.
    std::optional<bool> readFlagInVariant();
    std::optional<std::uint32_t> readNumber();
    /// A copy that is open for as long as it, or a copy of it, lives.
    std::optional<QDBusUnixFileDescriptor> readDescriptor();

private:
    sd_bus_message* message_;
};

} // namespace vantoro::desktop
