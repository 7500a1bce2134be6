// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/posix/file_descriptor.h"

struct sd_bus_message;

namespace vantoro::desktop {

using BusTexts = std::vector<std::string>;
/// Dictionaries of strings.
using BusRecords = std::vector<std::vector<std::pair<std::string, std::string>>>;
using BusValue =
    std::variant<std::string, bool, double, std::uint8_t, std::int64_t, std::uint32_t, BusRecords>;
/// A dictionary, as used for optional arguments.
using BusOptions = std::vector<std::pair<std::string, BusValue>>;

/// An open file; sends a duplicate of the descriptor.
struct BusFile {
    int descriptor = -1;
};

/// The values of an interface's properties, by name.
using BusProperties = std::map<std::string, BusValue>;

using BusArgument =
    std::variant<std::string, std::uint32_t, std::int32_t, BusOptions, BusTexts, BusFile>;

/// False if they cannot be sent.
bool append(sd_bus_message* message, const std::vector<BusArgument>& arguments);
bool appendValue(sd_bus_message* message, const BusValue& value);
bool appendVariant(sd_bus_message* message, const BusValue& value);

/// A reply or a signal. Valid only within the callback that receives it, on its thread.
class BusMessage {
public:
    explicit BusMessage(sd_bus_message* message) : message_(message) {}

    bool isError() const;
    /// Whether it is the bus's answer that nobody has the called name, or no longer.
    bool saysReceiverIsGone() const;
    /// Of an error; else empty.
    std::string errorName() const;
    std::string errorText() const;
    /// The sender's unique name, which the bus guarantees.
    std::string sender() const;
    /// The object that sends a signal; empty for a reply.
    std::string path() const;

    /// Each reads the next argument; nothing if it has another type.
    std::optional<std::string> readText();
    std::optional<std::string> readPath();
    std::optional<bool> readFlag();
    /// Reads a boolean in a variant, the form of a property's value.
    std::optional<bool> readFlagInVariant();
    std::optional<std::string> readTextInVariant();
    /// Also from a variant in a variant.
    std::optional<std::uint32_t> readNumberInVariant();
    std::optional<std::uint32_t> readNumber();
    /// Reads a dictionary of variants; leaves out all but texts, flags and wide numbers.
    std::optional<BusProperties> readProperties();
    std::optional<BusTexts> readTexts();
    /// From a dictionary of string lists, the list with this key; empty if the key is missing.
    std::optional<BusTexts> readTextsOf(const std::string& name);
    /// A duplicate of the descriptor.
    std::optional<posix::FileDescriptor> readFile();

private:
    sd_bus_message* message_;
};

} // namespace vantoro::desktop
