// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/remote/control_service.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <utility>
#include <variant>

#include <QtCore/QMetaObject>
#include <QtCore/QPointer>
#include <QtCore/QString>

#include <systemd/sd-bus.h>

#include "platform/desktop/bus/activation_token.h"

namespace vantoro::desktop {

namespace {

/// The bus refuses texts that are not UTF-8, as a failure's may be where it quotes a file's name.
std::string validText(const std::string& text) {
    return QString::fromStdString(text).toStdString();
}

} // namespace

struct ControlService::Handlers {
    static int start(sd_bus_message* call, void* service, sd_bus_error* /*error*/) {
        return take(call, service, [](auto& program, const auto& token, const auto& answered) {
            program.start(token, answered);
        });
    }

    static int stop(sd_bus_message* call, void* service, sd_bus_error* /*error*/) {
        return take(call, service, [](auto& program, const auto& token, const auto& answered) {
            program.stop(token, answered);
        });
    }

    static int mark(sd_bus_message* call, void* argument, sd_bus_error* /*error*/) {
        const char* text = nullptr;
        if (const int read = sd_bus_message_read(call, "s", &text); read < 0) {
            return read;
        }
        auto* const service = static_cast<ControlService*>(argument);
        service->take(call, [service, words = std::string(text)](ControlledProgram& program,
                                                                 const Call& taken) {
            service->answer(taken, program.mark(words));
        });
        return 1; // answered later
    }

    static int property(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/,
                        const char* name, sd_bus_message* reply, void* service,
                        sd_bus_error* /*error*/) {
        auto value = static_cast<ControlService*>(service)->properties().at(name);
        if (auto* const text = std::get_if<std::string>(&value)) {
            *text = validText(*text);
        }
        return appendValue(reply, value) ? 1 : -EIO;
    }

private:
    template <class Ask>
    static int take(sd_bus_message* call, void* argument, const Ask& ask) {
        std::string token;
        if (const int read = readActivationToken(call, token); read < 0) {
            return read;
        }
        auto* const service = static_cast<ControlService*>(argument);
        service->take(call, [service, token, ask](ControlledProgram& program, const Call& taken) {
            ask(program, token, [alive = QPointer(service), taken](const auto& result) {
                if (alive) {
                    alive->answer(taken, result);
                }
            });
        });
        return 1; // answered later
    }
};

namespace {

/// As for the application's actions: everybody on the session bus is the user.
constexpr auto unprivileged = SD_BUS_VTABLE_UNPRIVILEGED;
constexpr auto signalled = SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE;

} // namespace

ControlService::ControlService(BusConnection& bus) : bus_(bus) {
    static const sd_bus_vtable table[] = {
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD_WITH_NAMES("Start", "a{sv}", "options\0", "", "", Handlers::start,
                                 unprivileged),
        SD_BUS_METHOD_WITH_NAMES("Stop", "a{sv}", "options\0", "sbs",
                                 "recording\0is_complete\0message\0", Handlers::stop, unprivileged),
        SD_BUS_METHOD_WITH_NAMES("Mark", "sa{sv}", "text\0options\0", "u", "number\0",
                                 Handlers::mark, unprivileged),
        SD_BUS_PROPERTY("State", "s", Handlers::property, 0, signalled),
        SD_BUS_PROPERTY("StartedAt", "x", Handlers::property, 0, signalled),
        SD_BUS_PROPERTY("ElapsedSeconds", "x", Handlers::property, 0, 0),
        SD_BUS_PROPERTY("SavingProgress", "d", Handlers::property, 0, 0),
        SD_BUS_PROPERTY("SystemAudio", "b", Handlers::property, 0, signalled),
        SD_BUS_PROPERTY("SystemAudioLevel", "d", Handlers::property, 0, 0),
        SD_BUS_PROPERTY("SystemAudioCondition", "s", Handlers::property, 0, signalled),
        SD_BUS_PROPERTY("Microphone", "b", Handlers::property, 0, signalled),
        SD_BUS_PROPERTY("MicrophoneLevel", "d", Handlers::property, 0, 0),
        SD_BUS_PROPERTY("MicrophoneCondition", "s", Handlers::property, 0, signalled),
        SD_BUS_PROPERTY("MicrophoneID", "s", Handlers::property, 0, signalled),
        SD_BUS_PROPERTY("Folder", "s", Handlers::property, 0, signalled),
        SD_BUS_PROPERTY("LastRecording", "s", Handlers::property, 0, signalled),
        SD_BUS_PROPERTY("Message", "s", Handlers::property, 0, signalled),
        SD_BUS_PROPERTY("Version", "u", Handlers::property, 0, SD_BUS_VTABLE_PROPERTY_CONST),
        SD_BUS_VTABLE_END,
    };
    // Without a bus there is nobody to serve.
    static_cast<void>(bus_.exportObject(controlObject, table, this));
    published_ = properties();
}

void ControlService::serve(ControlledProgram* program) {
    program_ = program;
    if (program_ != nullptr) {
        publish();
        carryOutCalls();
    }
}

void ControlService::publish() {
    static constexpr std::array unsignalled = {"ElapsedSeconds", "SavingProgress",
                                               "SystemAudioLevel", "MicrophoneLevel"};
    auto now = properties();
    for (const auto* const name : unsignalled) {
        now.erase(name);
        published_.erase(name);
    }
    std::vector<std::string> changed;
    for (const auto& [name, value] : now) {
        if (published_[name] != value) {
            changed.push_back(name);
        }
    }
    published_ = std::move(now);
    if (changed.empty()) {
        return;
    }
    std::vector<char*> names;
    names.reserve(changed.size() + 1);
    for (auto& name : changed) {
        names.push_back(name.data());
    }
    names.push_back(nullptr);
    // A lost signal leaves nothing to do: who needs the state can ask for it.
    static_cast<void>(bus_.send([&](sd_bus* bus) {
        return sd_bus_emit_properties_changed_strv(bus, controlObject.path.c_str(),
                                                   controlObject.interface.c_str(), names.data());
    }));
}

void ControlService::take(sd_bus_message* call,
                          std::function<void(ControlledProgram&, const Call&)> carryOut) {
    const Call kept(sd_bus_message_ref(call), [](sd_bus_message* m) { sd_bus_message_unref(m); });
    waiting_.emplace_back([kept, carryOut = std::move(carryOut)](ControlledProgram& program) {
        carryOut(program, kept);
    });
    carryOutCalls();
}

/// Not within the bus's callback: carrying it out may take a while.
void ControlService::carryOutCalls() {
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (program_ != nullptr) {
                for (const auto& call : std::exchange(waiting_, {})) {
                    call(*program_);
                }
            }
        },
        Qt::QueuedConnection);
}

void ControlService::answer(const Call& call, const std::expected<void, ControlFailure>& result) {
    static_cast<void>(bus_.send([&](sd_bus* /*bus*/) {
        return result ? sd_bus_reply_method_return(call.get(), nullptr)
                      : sd_bus_reply_method_errorf(call.get(), result.error().error.c_str(), "%s",
                                                   validText(result.error().text).c_str());
    }));
}

void ControlService::answer(const Call& call,
                            const std::expected<SavedRecording, ControlFailure>& result) {
    if (!result) {
        answer(call, std::expected<void, ControlFailure>(std::unexpected(result.error())));
        return;
    }
    static_cast<void>(bus_.send([&](sd_bus* /*bus*/) {
        return sd_bus_reply_method_return(call.get(), "sbs", validText(result->uri).c_str(),
                                          result->isComplete ? 1 : 0,
                                          validText(result->message).c_str());
    }));
}

void ControlService::answer(const Call& call,
                            const std::expected<std::uint32_t, ControlFailure>& result) {
    if (!result) {
        answer(call, std::expected<void, ControlFailure>(std::unexpected(result.error())));
        return;
    }
    static_cast<void>(bus_.send(
        [&](sd_bus* /*bus*/) { return sd_bus_reply_method_return(call.get(), "u", *result); }));
}

BusProperties ControlService::properties() const {
    return propertiesOf(program_ == nullptr ? ControlStatus() : program_->status());
}

} // namespace vantoro::desktop
