// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/posix/file_descriptor.h"

struct sd_bus_message;

namespace vantoro::desktop {

/// A table of named texts, the form in which optional arguments are passed.
using BusOptions = std::vector<std::pair<std::string, std::string>>;
using BusTexts = std::vector<std::string>;

/// An open file, of which a copy is sent.
struct BusFile {
    int descriptor = -1;
};

using BusArgument = std::variant<std::string, std::uint32_t, BusOptions, BusTexts, BusFile>;

/// False when they cannot be sent.
bool append(sd_bus_message* message, const std::vector<BusArgument>& arguments);

/// A reply or a signal, for as long as the function runs that it is given to, on its thread.
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
    std::optional<std::string> readTextInVariant();
    std::optional<std::uint32_t> readNumber();
    std::optional<BusTexts> readTexts();
    /// Of a table of lists of texts the list of this name, which is empty where the table has none.
    std::optional<BusTexts> readTextsOf(const std::string& name);
    /// A copy of an open file.
    std::optional<posix::FileDescriptor> readFile();

private:
    template <class Read>
    auto readInVariant(const char* type, Read read) -> decltype(read());

    sd_bus_message* message_;
};

} // namespace vantoro::desktop
