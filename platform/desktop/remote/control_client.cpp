// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/remote/control_client.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

namespace vantoro::desktop {

namespace {

using namespace std::chrono_literals;

/// Between questions whether a program is alive while it does what it was asked.
constexpr auto longestPingInterval = 1s;
constexpr const char* applicationService = "com.vantoro.app";

bool isOurs(const std::string& service) {
    return service == applicationService || service.starts_with(recordingServices);
}

BusMethod method(const std::string& service, const char* member) {
    return {.service = service,
            .path = controlObject.path,
            .interface = controlObject.interface,
            .member = member,
            .startsService = false};
}

/// Whether the bus says that nobody has the name and that it could not change that.
bool saysNotStarted(const BusMessage& reply) {
    const auto name = reply.errorName();
    return name == "org.freedesktop.DBus.Error.ServiceUnknown" ||
           name == "org.freedesktop.DBus.Error.NameHasNoOwner" ||
           name.starts_with("org.freedesktop.DBus.Error.Spawn.");
}

CallFailure failureOf(const BusMessage& reply) {
    if (saysNotStarted(reply)) {
        return {.noAnswer = NoAnswer::notStarted, .told = {}};
    }
    if (reply.saysReceiverIsGone()) {
        return {.noAnswer = NoAnswer::gone, .told = {}};
    }
    return {.noAnswer = std::nullopt,
            .told = {.error = reply.errorName(), .text = reply.errorText()}};
}

BusOptions optionsWith(const std::string& token) {
    return token.empty() ? BusOptions() : BusOptions{{"activation-token", token}};
}

} // namespace

/// Shared with the bus's callbacks, which may outlast the wait.
struct ControlClient::Waiting {
    std::optional<std::expected<void, CallFailure>> answer;
    Clock::time_point lastSign = Clock::now(); ///< of life
    Clock::time_point lastPing = Clock::now();
    bool isPinged = false;
};

/// Shared with the bus's callbacks, as above.
struct ControlClient::Survey {
    bool isListed = false;
    bool isOver = false; ///< what is answered from now on is late
    std::size_t unanswered = 0;
    std::vector<RunningProgram> programs;
};

ControlClient::ControlClient(const std::string& sessionBus, int interruption)
    : ControlClient(sessionBus, interruption, Limits()) {}

ControlClient::ControlClient(const std::string& sessionBus, int interruption, const Limits& limits)
    : interruption_(interruption), limits_(limits), bus_(sessionBus) {}

std::expected<std::vector<RunningProgram>, NoAnswer> ControlClient::programs() {
    const auto deadline = Clock::now() + limits_.silence;
    if (!awaitConnection(deadline)) {
        return std::unexpected(NoAnswer::interrupted);
    }
    hasChanged_ = false;
    const auto survey = std::make_shared<Survey>();
    const bool isAsked = bus_.ask(busMethod("ListNames"), {}, [this, survey](BusMessage& reply) {
        survey->isListed = true;
        for (const auto& name : reply.readTexts().value_or(BusTexts())) {
            if (isOurs(name)) {
                survey->programs.push_back({.service = name, .status = std::nullopt});
            }
        }
        for (std::size_t index = 0; index < survey->programs.size(); ++index) {
            askForStatus(survey, index);
        }
    });
    while (isAsked && !bus_.isGone() && (!survey->isListed || survey->unanswered > 0) &&
           Clock::now() < deadline) {
        if (!await(deadline)) {
            return std::unexpected(NoAnswer::interrupted);
        }
    }
    survey->isOver = true;
    if (bus_.isGone()) {
        return std::unexpected(NoAnswer::noBus);
    }
    if (!survey->isListed) {
        return std::unexpected(NoAnswer::silentBus);
    }
    auto programs = survey->programs;
    std::erase_if(programs, [](const auto& program) { return program.service.empty(); });
    return programs;
}

void ControlClient::askForStatus(const std::shared_ptr<Survey>& survey, std::size_t index) {
    const auto service = survey->programs[index].service;
    if (owing_.contains(service)) {
        return;
    }
    const BusMethod getAll{.service = service,
                           .path = controlObject.path,
                           .interface = "org.freedesktop.DBus.Properties",
                           .member = "GetAll",
                           .startsService = false};
    const bool isSent =
        bus_.ask(getAll, {controlObject.interface}, [this, survey, index](BusMessage& reply) {
            auto& program = survey->programs[index];
            --survey->unanswered;
            owing_.erase(program.service);
            hasChanged_ = hasChanged_ || survey->isOver;
            const auto properties = reply.isError() ? std::nullopt : reply.readProperties();
            if (properties) {
                program.status = statusOf(*properties);
            } else if (reply.saysReceiverIsGone()) {
                program.service.clear();
            }
        });
    if (isSent) {
        ++survey->unanswered;
        owing_.insert(service);
    }
}

bool ControlClient::awaitConnection(Clock::time_point deadline) {
    while (bus_.isFull() && Clock::now() < deadline) {
        if (!await(deadline)) {
            return false;
        }
    }
    return true;
}

void ControlClient::follow() {
    const auto changed = [this](BusMessage& /*signal*/) { hasChanged_ = true; };
    bus_.listen("type='signal',interface='org.freedesktop.DBus.Properties',"
                "member='PropertiesChanged',path='" +
                    controlObject.path + "',arg0='" + controlObject.interface + "'",
                changed);
    bus_.listen("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                "member='NameOwnerChanged',arg0namespace='" +
                    std::string(applicationService) + "'",
                changed);
}

bool ControlClient::awaitChange(Clock::time_point deadline) {
    while (!hasChanged_ && !bus_.isGone() && Clock::now() < deadline) {
        if (!await(deadline)) {
            return false;
        }
    }
    return !bus_.isGone();
}

std::expected<void, CallFailure> ControlClient::start(const std::string& service,
                                                      const std::string& token) {
    auto asked = method(service, "Start");
    asked.startsService = service == applicationService;
    return call(asked, {optionsWith(token)}, Clock::now() + limits_.start, {});
}

std::expected<void, NoAnswer> ControlClient::awaitService(const std::string& service) {
    const auto isThere = std::make_shared<bool>(false);
    bus_.listen("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                "member='NameOwnerChanged',arg0='" +
                    service + "'",
                [isThere](BusMessage& signal) {
                    const auto name = signal.readText();
                    const auto before = signal.readText();
                    const auto after = signal.readText();
                    *isThere = after && !after->empty();
                });
    // Asked after the subscription, so that no change is missed.
    bus_.ask(busMethod("GetNameOwner"), {service},
             [isThere](BusMessage& reply) { *isThere = *isThere || !reply.isError(); });
    const auto deadline = Clock::now() + limits_.start;
    while (!*isThere) {
        if (bus_.isGone()) {
            return std::unexpected(NoAnswer::noBus);
        }
        if (Clock::now() >= deadline) {
            return std::unexpected(NoAnswer::notStarted);
        }
        if (!await(deadline)) {
            return std::unexpected(NoAnswer::interrupted);
        }
    }
    return {};
}

std::expected<SavedRecording, CallFailure> ControlClient::stop(const std::string& service,
                                                               const std::string& token) {
    const auto saved = std::make_shared<SavedRecording>();
    const auto result = call(method(service, "Stop"), {optionsWith(token)}, std::nullopt,
                             [saved](BusMessage& reply) {
                                 saved->uri = reply.readText().value_or("");
                                 saved->isComplete = reply.readFlag().value_or(true);
                                 saved->message = reply.readText().value_or("");
                             });
    if (!result) {
        return std::unexpected(result.error());
    }
    return *saved;
}

std::expected<std::uint32_t, CallFailure> ControlClient::mark(const std::string& service,
                                                              const std::string& text) {
    const auto number = std::make_shared<std::uint32_t>(0);
    const auto result =
        call(method(service, "Mark"), {text, BusOptions()}, std::nullopt,
             [number](BusMessage& reply) { *number = reply.readNumber().value_or(0); });
    if (!result) {
        return std::unexpected(result.error());
    }
    return *number;
}

std::expected<void, CallFailure> ControlClient::call(const BusMethod& method,
                                                     const std::vector<BusArgument>& arguments,
                                                     std::optional<Clock::time_point> limit,
                                                     const BusReceive& read) {
    const auto failed = [](NoAnswer reason) {
        return std::unexpected(CallFailure{.noAnswer = reason, .told = {}});
    };
    const auto waiting = std::make_shared<Waiting>();
    const bool isSent = bus_.ask(method, arguments, [waiting, read](BusMessage& reply) {
        if (reply.isError()) {
            waiting->answer = std::unexpected(failureOf(reply));
        } else {
            if (read) {
                read(reply);
            }
            waiting->answer.emplace();
        }
    });
    while (isSent && !bus_.isGone() && !waiting->answer) {
        const auto now = Clock::now();
        if (now - waiting->lastSign >= limits_.silence) {
            return failed(NoAnswer::silent);
        }
        if (limit && now >= *limit) {
            return failed(NoAnswer::late);
        }
        ping(method.service, waiting);
        const auto nextPing = now + pingInterval();
        if (!await(std::min(nextPing, limit.value_or(nextPing)))) {
            return failed(NoAnswer::interrupted);
        }
    }
    return waiting->answer.value_or(std::expected<void, CallFailure>(failed(NoAnswer::noBus)));
}

std::chrono::milliseconds ControlClient::pingInterval() const {
    return std::min<std::chrono::milliseconds>(longestPingInterval, limits_.silence / 4);
}

/// Any answer counts, even that nobody has the name yet.
void ControlClient::ping(const std::string& service, const std::shared_ptr<Waiting>& waiting) {
    const auto now = Clock::now();
    if (waiting->isPinged || now - waiting->lastPing < pingInterval()) {
        return;
    }
    waiting->lastPing = now;
    waiting->isPinged = bus_.ask({.service = service,
                                  .path = controlObject.path,
                                  .interface = "org.freedesktop.DBus.Peer",
                                  .member = "Ping",
                                  .startsService = false},
                                 {}, [waiting](BusMessage& /*reply*/) {
                                     waiting->isPinged = false;
                                     waiting->lastSign = Clock::now();
                                 });
}

bool ControlClient::await(Clock::time_point deadline) {
    return awaitBuses(std::array{&bus_}, deadline, interruption_);
}

} // namespace vantoro::desktop
