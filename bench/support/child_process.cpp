// SPDX-License-Identifier: GPL-3.0-or-later

#include "bench/support/child_process.h"

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>

namespace vantoro::bench {

namespace {

double secondsOf(const timeval& time) {
    return static_cast<double>(time.tv_sec) + (static_cast<double>(time.tv_usec) / 1e6);
}

} // namespace

ProcessCost runProcess(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str())); // exec's signature; not written
    }
    arguments.push_back(nullptr);
    const auto begin = std::chrono::steady_clock::now();
    pid_t process = 0;
    if (posix_spawnp(&process, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0) {
        throw std::runtime_error("cannot run " + command[0]);
    }
    int status = 0;
    rusage usage{};
    if (wait4(process, &status, 0, &usage) != process || !WIFEXITED(status) ||
        WEXITSTATUS(status) != 0) {
        throw std::runtime_error(command[0] + " failed");
    }
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;
    return {.wallSeconds = wall.count(),
            .cpuSeconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime),
            .peakMegabytes = static_cast<double>(usage.ru_maxrss) / 1024};
}

} // namespace vantoro::bench
