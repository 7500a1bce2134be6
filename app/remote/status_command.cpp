// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/remote/status_command.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include <sys/epoll.h>
#include <unistd.h>

#include "app/remote/program_choice.h"
#include "app/remote/remote_command.h"
#include "app/remote/status_text.h"
#include "l10n/texts/command_texts.h"
#include "platform/desktop/bus/bus_addresses.h"
#include "platform/posix/file_descriptor.h"

namespace vantoro {

namespace {

using namespace std::chrono_literals;
using desktop::ControlClient;
using Programs = std::vector<desktop::RunningProgram>;

/// How often a recording's time and levels are read; nothing signals them.
constexpr auto readingInterval = 250ms;
constexpr auto longestWait = 1h;

/// A descriptor that becomes readable when the other one does, or when nobody reads standard output
/// any more.
posix::FileDescriptor endOfReaders(int interruption) {
    posix::FileDescriptor either(::epoll_create1(EPOLL_CLOEXEC));
    const auto add = [&either](int descriptor, std::uint32_t events) {
        epoll_event event{.events = events, .data = {.fd = descriptor}};
        // Fails for a file, which always has readers.
        static_cast<void>(::epoll_ctl(either.get(), EPOLL_CTL_ADD, descriptor, &event));
    };
    add(interruption, EPOLLIN);
    add(STDOUT_FILENO, 0); // only errors, which are always reported
    return either;
}

bool printLine(const std::string& line) {
    std::cout << line << std::endl; // NOLINT(performance-avoid-endl): checked below
    return std::cout.good();
}

int fail(const BilingualText& text, AppLanguage language) {
    std::cerr << text.in(language) << "\n";
    return 1;
}

std::string textOf(const Programs& programs, const StatusCommand& command, AppLanguage language) {
    return command.isJSON ? statusObject(programs, language) : statusLine(programs, language);
}

int printOnce(const Programs& programs, const StatusCommand& command, AppLanguage language) {
    const bool isThere = chosenOf(programs) != nullptr;
    if ((isThere || command.isJSON) && !printLine(textOf(programs, command, language))) {
        return fail(CommandText::resultNotPrinted, language);
    }
    if (!isThere) {
        return fail(programs.empty() ? CommandText::notRunning : CommandText::programSilent,
                    language);
    }
    if (isOneSilent(programs)) {
        std::cerr << CommandText::otherProgramSilent.in(language) << "\n";
    }
    return 0;
}

/// Whether something changes without a signal.
bool isMoving(const Programs& programs) {
    return std::ranges::any_of(
        programs, [](const auto& program) { return useOf(program) >= ProgramUse::saving; });
}

int follow(ControlClient& client, const StatusCommand& command, AppLanguage language) {
    client.follow();
    std::string printed;
    while (true) {
        const auto programs = client.programs();
        if (!programs && programs.error() == desktop::NoAnswer::interrupted) {
            return 0;
        }
        if (!programs) {
            std::cerr << errorText(programs.error(), language) << "\n";
            return 1;
        }
        if (const auto line = textOf(*programs, command, language); line != printed) {
            if (!printLine(line)) {
                return fail(CommandText::resultNotPrinted, language);
            }
            printed = line;
        }
        const auto wait = isMoving(*programs) ? std::chrono::milliseconds(readingInterval)
                                              : std::chrono::milliseconds(longestWait);
        if (!client.awaitChange(std::chrono::steady_clock::now() + wait)) {
            return 0;
        }
    }
}

} // namespace

int runStatusCommand(const StatusCommand& command, AppLanguage language, int interruption) {
    const auto either = endOfReaders(interruption);
    ControlClient client(desktop::standardBusAddresses().session, either.get());
    if (command.isFollowed) {
        return follow(client, command, language);
    }
    const auto programs = client.programs();
    if (!programs) {
        std::cerr << errorText(programs.error(), language) << "\n";
        return 1;
    }
    return printOnce(*programs, command, language);
}

} // namespace vantoro
