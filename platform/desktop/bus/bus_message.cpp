// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/bus_message.h"

#include <string_view>

#include <fcntl.h>

#include <systemd/sd-bus.h>

namespace vantoro::desktop {

namespace {

class Writer {
public:
    explicit Writer(sd_bus_message* message) : message_(message) {}

    bool operator()(const std::string& text) const { return write('s', text.c_str()); }

    bool operator()(std::uint32_t number) const { return write('u', &number); }

    bool operator()(std::int32_t number) const { return write('i', &number); }

    bool operator()(const BusOptions& options) const {
        bool written = open('a', "{sv}");
        for (const auto& [name, value] : options) {
            written = written && open('e', "sv") && (*this)(name) && writeVariant(value) && close();
        }
        return written && close();
    }

    bool operator()(const BusRecords& records) const {
        bool written = open('a', "a{sv}");
        for (const auto& record : records) {
            written = written && (*this)(BusOptions(record.begin(), record.end()));
        }
        return written && close();
    }

    bool operator()(bool flag) const {
        const int number = flag ? 1 : 0;
        return write('b', &number);
    }

    bool operator()(double number) const { return write('d', &number); }

    bool operator()(std::uint8_t number) const { return write('y', &number); }

    bool operator()(std::int64_t number) const { return write('x', &number); }

    bool operator()(const BusTexts& texts) const {
        bool written = open('a', "s");
        for (const auto& text : texts) {
            written = written && (*this)(text);
        }
        return written && close();
    }

    bool operator()(BusFile file) const { return write('h', &file.descriptor); }

    bool writeVariant(const BusValue& value) const {
        constexpr const char* types[] = {"s", "b", "d", "y", "x", "u", "aa{sv}"}; // of a BusValue
        return open('v', types[value.index()]) && std::visit(*this, value) && close();
    }

private:
    bool write(char type, const void* value) const {
        return sd_bus_message_append_basic(message_, type, value) >= 0;
    }

    bool open(char type, const char* contents) const {
        return sd_bus_message_open_container(message_, type, contents) >= 0;
    }

    bool close() const { return sd_bus_message_close_container(message_) >= 0; }

    sd_bus_message* message_;
};

template <class Value>
std::optional<Value> read(sd_bus_message* message, char type) {
    Value value{};
    if (sd_bus_message_read_basic(message, type, static_cast<void*>(&value)) <= 0) {
        return std::nullopt;
    }
    return value;
}

std::optional<std::string> copyOf(std::optional<const char*> text) {
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

/// Reads the value of a variant with this signature; skips one that no interface here has as a
/// property.
std::optional<BusValue> readVariant(sd_bus_message* message, const std::string& type) {
    constexpr std::string_view known = "sbdxu";
    if (type.size() != 1 || known.find(type.front()) == known.npos) {
        sd_bus_message_skip(message, "v");
        return std::nullopt;
    }
    if (sd_bus_message_enter_container(message, 'v', type.c_str()) <= 0) {
        return std::nullopt;
    }
    std::optional<BusValue> value;
    const auto take = [&](const auto& read) {
        if (read) {
            value = *read;
        }
    };
    switch (type.front()) {
    case 's':
        take(copyOf(read<const char*>(message, 's')));
        break;
    case 'b':
        take(read<int>(message, 'b').transform([](int flag) { return flag != 0; }));
        break;
    case 'd':
        take(read<double>(message, 'd'));
        break;
    case 'x':
        take(read<std::int64_t>(message, 'x'));
        break;
    default:
        take(read<std::uint32_t>(message, 'u'));
    }
    sd_bus_message_exit_container(message);
    return value;
}

} // namespace

bool append(sd_bus_message* message, const std::vector<BusArgument>& arguments) {
    const Writer writer(message);
    for (const auto& argument : arguments) {
        if (!std::visit(writer, argument)) {
            return false;
        }
    }
    return true;
}

bool appendValue(sd_bus_message* message, const BusValue& value) {
    return std::visit(Writer(message), value);
}

bool appendVariant(sd_bus_message* message, const BusValue& value) {
    return Writer(message).writeVariant(value);
}

bool BusMessage::isError() const {
    return sd_bus_message_is_method_error(message_, nullptr) != 0;
}

bool BusMessage::saysReceiverIsGone() const {
    return sd_bus_message_is_method_error(message_, SD_BUS_ERROR_NO_REPLY) > 0 ||
           sd_bus_message_is_method_error(message_, SD_BUS_ERROR_SERVICE_UNKNOWN) > 0 ||
           sd_bus_message_is_method_error(message_, SD_BUS_ERROR_NAME_HAS_NO_OWNER) > 0;
}

std::string BusMessage::errorName() const {
    const sd_bus_error* const error = sd_bus_message_get_error(message_);
    return error == nullptr || error->name == nullptr ? "" : error->name;
}

std::string BusMessage::errorText() const {
    const sd_bus_error* const error = sd_bus_message_get_error(message_);
    return error == nullptr || error->message == nullptr ? "" : error->message;
}

std::string BusMessage::sender() const {
    const char* const name = sd_bus_message_get_sender(message_);
    return name == nullptr ? "" : name;
}

std::string BusMessage::path() const {
    const char* const path = sd_bus_message_get_path(message_);
    return path == nullptr ? "" : path;
}

std::optional<std::string> BusMessage::readText() {
    return copyOf(read<const char*>(message_, 's'));
}

std::optional<std::string> BusMessage::readPath() {
    return copyOf(read<const char*>(message_, 'o'));
}

std::optional<bool> BusMessage::readFlag() {
    const auto flag = read<int>(message_, 'b');
    return flag ? std::optional<bool>(*flag != 0) : std::nullopt;
}

std::optional<bool> BusMessage::readFlagInVariant() {
    int flag = 0;
    const bool isRead = sd_bus_message_read(message_, "v", "b", &flag) > 0;
    return isRead ? std::optional(flag != 0) : std::nullopt;
}

std::optional<std::string> BusMessage::readTextInVariant() {
    const char* text = nullptr;
    const bool isRead = sd_bus_message_read(message_, "v", "s", &text) > 0;
    return isRead ? std::optional<std::string>(text) : std::nullopt;
}

std::optional<std::uint32_t> BusMessage::readNumberInVariant() {
    const char* contents = nullptr;
    while (sd_bus_message_peek_type(message_, nullptr, &contents) > 0 && contents != nullptr &&
           sd_bus_message_enter_container(message_, SD_BUS_TYPE_VARIANT, contents) > 0) {
    }
    return readNumber();
}

std::optional<std::uint32_t> BusMessage::readNumber() {
    return read<std::uint32_t>(message_, 'u');
}

std::optional<BusProperties> BusMessage::readProperties() {
    if (sd_bus_message_enter_container(message_, 'a', "{sv}") <= 0) {
        return std::nullopt;
    }
    BusProperties properties;
    while (sd_bus_message_enter_container(message_, 'e', "sv") > 0) {
        const auto name = readText();
        const char* type = nullptr;
        if (!name || sd_bus_message_peek_type(message_, nullptr, &type) <= 0) {
            return std::nullopt;
        }
        if (const auto value = readVariant(message_, type)) {
            properties[*name] = *value;
        }
        if (sd_bus_message_exit_container(message_) < 0) {
            return std::nullopt;
        }
    }
    return sd_bus_message_exit_container(message_) < 0 ? std::nullopt : std::optional(properties);
}

std::optional<BusTexts> BusMessage::readTexts() {
    if (sd_bus_message_enter_container(message_, 'a', "s") <= 0) {
        return std::nullopt;
    }
    BusTexts texts;
    while (const auto text = readText()) {
        texts.push_back(*text);
    }
    return sd_bus_message_exit_container(message_) < 0 ? std::nullopt : std::optional(texts);
}

std::optional<BusTexts> BusMessage::readTextsOf(const std::string& name) {
    if (sd_bus_message_enter_container(message_, 'a', "{sas}") <= 0) {
        return std::nullopt;
    }
    BusTexts found;
    while (sd_bus_message_enter_container(message_, 'e', "sas") > 0) {
        const bool isIt = readText() == name;
        auto texts = readTexts();
        if (!texts || sd_bus_message_exit_container(message_) < 0) {
            return std::nullopt;
        }
        found = isIt ? std::move(*texts) : found;
    }
    return sd_bus_message_exit_container(message_) < 0 ? std::nullopt : std::optional(found);
}

std::optional<posix::FileDescriptor> BusMessage::readFile() {
    const auto number = read<int>(message_, 'h'); // owned by the message
    posix::FileDescriptor copy(number ? ::fcntl(*number, F_DUPFD_CLOEXEC, 0) : -1);
    return copy.isOpen() ? std::optional(std::move(copy)) : std::nullopt;
}

} // namespace vantoro::desktop
