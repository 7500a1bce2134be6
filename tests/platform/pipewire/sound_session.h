// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

#include "tests/support/temporary_folder.h"

namespace vantoro::testing {

/// A program that runs while this object lives.
class ChildProcess {
public:
    explicit ChildProcess(const std::vector<std::string>& command);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    /// Terminates the program.
    ~ChildProcess();

private:
    pid_t pid_;
};

/// Runs a program to its end and returns its exit status.
int run(const std::vector<std::string>& command);

/// Sounds in the private session, each played by an application of its own.
class SoundSession {
public:
    using Player = std::unique_ptr<ChildProcess>;

    /// Plays a tone on this many channels for a minute. The stream's node is called `name` and has
    /// further `properties`.
    Player play(const std::string& name, const std::string& output, double frequency,
                int channels = 2, double amplitude = 0.25, const std::string& properties = {});
    /// Plays a tone to the microphone only.
    Player speak(const std::string& name, double frequency, double amplitude = 0.25);
    /// Plays a single full-scale sample every half second.
    Player click(const std::string& name);

    /// Records from the microphone for a moment: PipeWire 1.4 reports what its mixer is set to only
    /// after its first use.
    static void useMicrophone();
    /// Moves a playing stream to another output, as a user would.
    static void move(const std::string& name, const std::string& output);
    /// Links ports by name, once they exist.
    static bool link(const std::string& outputPort, const std::string& inputPort);
    /// False if it never appears.
    static bool waitForPort(const std::string& outputPort);
    static bool waitForLink(const std::string& outputPort, const std::string& inputPort);
    /// Creates a device that exists until `destroyNode`. Returns once it is there.
    static void makeDevice(const std::string& name, const std::string& mediaClass,
                           const std::string& positions);
    static void destroyNode(const std::string& name);
    /// The node's id, or an empty string.
    static std::string nodeId(const std::string& name);
    /// Changes a desktop setting; returns once it is effective.
    static void makeDefaultMicrophone(const std::string& name);
    static void signalServer(int signal);
    /// Restarts a killed sound server. Returns once its devices are there; the session manager is
    /// not restarted.
    static Player startServerAgain();

private:
    std::string soundFile(const std::string& name, int channels,
                          const std::vector<float>& mono) const;

    TemporaryFolder folder_;
};

} // namespace vantoro::testing
