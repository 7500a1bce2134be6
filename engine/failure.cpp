// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/failure.h"

#include <array>
#include <string_view>
#include <utility>

namespace vantoro {

namespace {

/// In the order of the codes; the argument takes the place of %.
constexpr std::array<std::string_view, 24> sentences{
    "The sound system could not be initialized.",
    "The sound server cannot be reached.",
    "The sound server does not respond.",
    "The connection to the sound server was lost.",
    "There is no default microphone.",
    "The microphone \"%\" was not found.",
    "The microphone does not deliver any sound.",
    "The microphone no longer delivers sound.",
    "The microphone was disconnected.",
    "The recording could not be started in time.",
    "A recording stream could not be created.",
    "A recording stream could not be connected.",
    "The sound server ended the recording.",
    "The sound server ended the recording: %.",
    "Unable to start the file writer.",
    "Unable to write an audio sample.",
    "Unable to finish the recording.",
    "No sound reached the file.",
    "The recording file is damaged: %.",
    "There is no AAC coder on this system.",
    "There is no AAC decoder on this system.",
    "%",
    "A part of the program cannot be loaded: %",
    "The program was updated while it ran: quit it and start it again.",
};
static_assert(sentences.size() == static_cast<std::size_t>(FailureCode::programUpdated) + 1);

std::string sentenceOf(FailureCode code, const std::string& argument) {
    std::string sentence(sentences.at(static_cast<std::size_t>(code)));
    const auto place = sentence.find('%');
    return place == std::string::npos ? sentence : sentence.replace(place, 1, argument);
}

/// In the order of the actions.
constexpr std::array<std::string_view, 12> actions{
    "create the folder",
    "create",
    "create a file in",
    "open",
    "find",
    "examine",
    "lock",
    "read",
    "write",
    "remove",
    "list",
    "count the free space of",
};
static_assert(actions.size() == static_cast<std::size_t>(FileAction::countFreeSpace) + 1);

std::string shownName(const std::filesystem::path& path) {
    const auto name = path.has_filename() ? path.filename() : path.parent_path().filename();
    return name.empty() ? path.string() : name.string();
}

} // namespace

Failure::Failure(FailureCode code, std::string argument)
    : std::runtime_error(sentenceOf(code, argument)), code_(code), argument_(std::move(argument)) {}

FileFailure::FileFailure(FileAction action, const std::filesystem::path& path, int errorNumber)
    : std::system_error(errorNumber, std::system_category(),
                        "Cannot " + std::string(actions.at(static_cast<std::size_t>(action))) +
                            " " + shownName(path)),
      action_(action),
      name_(shownName(path)) {}

std::string whatOf(const std::exception_ptr& failure) {
    if (!failure) {
        return {};
    }
    try {
        std::rethrow_exception(failure);
    } catch (const std::exception& exception) {
        return exception.what();
    } catch (...) {
        return "unknown failure";
    }
}

} // namespace vantoro
