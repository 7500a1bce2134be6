// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/platform/pipewire/sound_session.h"

#include <array>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <numbers>
#include <span>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <sched.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantoro::testing {

namespace {

constexpr int secondsOfSound = 60;

/// Starts a player with real-time priority, if permitted, so that a busy machine does not interrupt
/// it.
class PlayerPriority {
public:
    PlayerPriority() {
        posix_spawnattr_init(&attributes_);
        if (mayAsk()) {
            const sched_param parameters{.sched_priority = priority};
            posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSCHEDULER);
            posix_spawnattr_setschedpolicy(&attributes_, SCHED_RR);
            posix_spawnattr_setschedparam(&attributes_, &parameters);
        }
    }

    PlayerPriority(const PlayerPriority&) = delete;
    PlayerPriority& operator=(const PlayerPriority&) = delete;

    ~PlayerPriority() { posix_spawnattr_destroy(&attributes_); }

    const posix_spawnattr_t* attributes() const { return &attributes_; }

private:
    static constexpr int priority = 20; // below the sound server's own

    static bool mayAsk() {
        rlimit limit{};
        return geteuid() == 0 ||
               (getrlimit(RLIMIT_RTPRIO, &limit) == 0 && limit.rlim_cur >= priority);
    }

    posix_spawnattr_t attributes_{};
};

pid_t start(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    pid_t pid = 0;
    const PlayerPriority priority;
    if (posix_spawnp(&pid, arguments[0], nullptr, priority.attributes(), arguments.data(),
                     environ) != 0) {
        throw std::runtime_error("cannot run " + command.front());
    }
    return pid;
}

std::string outputOf(const std::string& command) {
    std::string output;
    FILE* const pipe = popen(command.c_str(), "re");
    if (pipe == nullptr) {
        throw std::runtime_error("cannot run " + command);
    }
    std::array<char, 4096> part{};
    while (const std::size_t count = fread(part.data(), 1, part.size(), pipe)) {
        output.append(part.data(), count);
    }
    pclose(pipe);
    return output;
}

/// Programs that change the session do not signal completion; poll.
template <class Condition>
bool eventually(Condition condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

template <class Value>
void put(std::ofstream& file, Value value) {
    file.write(reinterpret_cast<const char*>(&value), sizeof value);
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command) : pid_(start(command)) {}

ChildProcess::~ChildProcess() {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
}

int run(const std::vector<std::string>& command) {
    int status = 0;
    if (waitpid(start(command), &status, 0) < 0) {
        return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string SoundSession::soundFile(const std::string& name, int channels,
                                    const std::vector<float>& mono) const {
    const auto path = folder_ / (name + ".wav");
    std::ofstream file(path, std::ios::binary);
    const auto bytes =
        static_cast<std::uint32_t>(mono.size() * 2 * static_cast<unsigned>(channels));
    file << "RIFF";
    put(file, std::uint32_t{36} + bytes);
    file << "WAVEfmt ";
    put(file, std::uint32_t{16});
    put(file, std::uint16_t{1}); // linear samples
    put(file, static_cast<std::uint16_t>(channels));
    put(file, std::uint32_t{48000});
    put(file, static_cast<std::uint32_t>(48000 * 2 * channels));
    put(file, static_cast<std::uint16_t>(2 * channels));
    put(file, std::uint16_t{16});
    file << "data";
    put(file, bytes);
    for (const float sample : mono) {
        for (int channel = 0; channel < channels; ++channel) {
            put(file, static_cast<std::int16_t>(std::lround(sample * 32767)));
        }
    }
    return path;
}

SoundSession::Player SoundSession::play(const std::string& name, const std::string& output,
                                        double frequency, int channels, double amplitude,
                                        const std::string& properties) {
    std::vector<float> sound(std::size_t{48000} * secondsOfSound);
    for (std::size_t i = 0; i < sound.size(); ++i) {
        sound[i] = static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * frequency *
                                                           static_cast<double>(i) / 48000));
    }
    return std::make_unique<ChildProcess>(std::vector<std::string>{
        "pw-cat", "-p", "--target", output, "-P", "{ node.name = " + name + " " + properties + " }",
        soundFile(name, channels, sound)});
}

SoundSession::Player SoundSession::speak(const std::string& name, double frequency,
                                         double amplitude) {
    auto player = play(name, "0", frequency, 1, amplitude);
    if (!link(name + ":output_MONO", "vantoro-microphone:input_MONO")) {
        throw std::runtime_error("the microphone cannot be spoken into");
    }
    return player;
}

SoundSession::Player SoundSession::click(const std::string& name) {
    std::vector<float> sound(std::size_t{48000} * secondsOfSound);
    for (std::size_t i = 0; i < sound.size(); i += 24000) {
        sound[i] = 0.9F;
    }
    return std::make_unique<ChildProcess>(
        std::vector<std::string>{"pw-cat", "-p", "--target", "vantoro-output-1", "-P",
                                 "{ node.name = " + name + " }", soundFile(name, 1, sound)});
}

void SoundSession::useMicrophone() {
    run({"sh", "-c",
         "parecord --device=vantoro-microphone --latency-msec=20 --raw | head --bytes=1 "
         ">/dev/null"});
}

void SoundSession::move(const std::string& name, const std::string& output) {
    run({"pw-metadata", nodeId(name), "target.object", output});
}

bool SoundSession::link(const std::string& outputPort, const std::string& inputPort) {
    return waitForPort(outputPort) && run({"pw-link", outputPort, inputPort}) == 0;
}

bool SoundSession::waitForPort(const std::string& outputPort) {
    return eventually([&] { return outputOf("pw-link -o").find(outputPort) != std::string::npos; });
}

bool SoundSession::waitForLink(const std::string& outputPort, const std::string& inputPort) {
    // Each port is a line, followed by an indented line per link.
    return eventually([&] {
        std::istringstream lines(outputOf("pw-link -l"));
        std::string port;
        for (std::string line; std::getline(lines, line);) {
            if (!line.starts_with(' ')) {
                port = line;
            } else if (port == outputPort && line.ends_with("|-> " + inputPort)) {
                return true;
            }
        }
        return false;
    });
}

void SoundSession::makeDevice(const std::string& name, const std::string& mediaClass,
                              const std::string& positions) {
    run({"pw-cli", "create-node", "adapter",
         "{ factory.name=support.null-audio-sink node.name=" + name + " media.class=" + mediaClass +
             " object.linger=true audio.position=[" + positions + "] }"});
    if (!eventually([&] { return !nodeId(name).empty(); })) {
        throw std::runtime_error("no device " + name);
    }
}

std::string SoundSession::nodeId(const std::string& name) {
    const std::string lines = outputOf("pw-cli ls Node");
    const auto found = lines.find("node.name = \"" + name + "\"");
    if (found == std::string::npos) {
        return {};
    }
    const auto start = lines.rfind("id ", lines.rfind(", type", found));
    return lines.substr(start + 3, lines.find(',', start) - start - 3);
}

void SoundSession::destroyNode(const std::string& name) {
    run({"pw-cli", "destroy", nodeId(name)});
}

void SoundSession::makeDefaultMicrophone(const std::string& name) {
    const auto value = R"({ "name": ")" + name + R"(" })";
    run({"pw-metadata", "0", "default.configured.audio.source", value});
    if (!eventually([&] {
            return outputOf("pw-metadata 0 default.audio.source").find('"' + name + '"') !=
                   std::string::npos;
        })) {
        throw std::runtime_error(name + " does not become the default");
    }
}

SoundSession::Player SoundSession::startServerAgain() {
    auto server = std::make_unique<ChildProcess>(std::vector<std::string>{"pipewire"});
    if (!eventually([] { return !SoundSession::nodeId("vantoro-microphone").empty(); })) {
        throw std::runtime_error("the sound server does not come back");
    }
    return server;
}

void SoundSession::signalServer(int signal) {
    const char* const pid = std::getenv("VANTORO_SESSION_PIPEWIRE_PID");
    if (pid == nullptr || kill(std::stoi(pid), signal) != 0) {
        throw std::runtime_error("no sound server of our own");
    }
}

} // namespace vantoro::testing
