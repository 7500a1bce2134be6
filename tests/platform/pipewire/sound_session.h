// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

namespace vantoro::testing {

/// A program that runs while this lives.
class ChildProcess {
public:
    explicit ChildProcess(const std::vector<std::string>& command);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    /// Ends it.
    ~ChildProcess();

private:
    pid_t pid_;
};

/// Runs a program to its end; its exit status.
int run(const std::vector<std::string>& command);

/// Sounds that programs play in the private session, each as an application of its own.
class SoundSession {
public:
    SoundSession();
    SoundSession(const SoundSession&) = delete;
    SoundSession& operator=(const SoundSession&) = delete;
    ~SoundSession();

    using Player = std::unique_ptr<ChildProcess>;

    /// A tone on all of this many channels, for a minute. The stream's node is called `name`, and
    /// has further `properties`.
    Player play(const std::string& name, const std::string& output, double frequency,
                int channels = 2, double amplitude = 0.25, const std::string& properties = {});
    /// A tone that is heard by the microphone only.
    Player speak(const std::string& name, double frequency, double amplitude = 0.25);
    /// A single sample of full level each half second.
    Player click(const std::string& name);

    /// Moves a playing stream to another output, as the user would.
    static void move(const std::string& name, const std::string& output);
    /// Links by the ports' names, once they exist.
    static bool link(const std::string& outputPort, const std::string& inputPort);
    /// False when they do not come about.
    static bool waitForPort(const std::string& outputPort);
    static bool waitForLink(const std::string& outputPort, const std::string& inputPort);
    /// A device that exists until it is destroyed by `destroyNode`. Returns once it is there.
    static void makeDevice(const std::string& name, const std::string& mediaClass,
                           const std::string& positions);
    static void destroyNode(const std::string& name);
    /// The node's id, or an empty text.
    static std::string nodeId(const std::string& name);
    /// As the user does in the desktop's settings. Returns once it is so.
    static void makeDefaultMicrophone(const std::string& name);
    static void signalServer(int signal);
    /// After it was killed. Returns once its devices are there; the session manager does not
    /// follow.
    static Player startServerAgain();

private:
    std::string soundFile(const std::string& name, int channels,
                          const std::vector<float>& mono) const;

    std::filesystem::path folder_;
};

} // namespace vantoro::testing
