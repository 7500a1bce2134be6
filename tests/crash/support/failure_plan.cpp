// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/crash/support/failure_plan.h"

#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace vantoro::testing {

namespace {

std::string settingOf(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

std::string resolved(const std::string& link) {
    std::string path(4096, '\0');
    const ssize_t length = ::readlink(link.c_str(), path.data(), path.size());
    path.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
    return path;
}

} // namespace

std::string pathOf(int descriptor) {
    return resolved("/proc/self/fd/" + std::to_string(descriptor));
}

std::string pathOf(int folder, const char* path) {
    if (path[0] == '/') {
        return path;
    }
    return (folder == AT_FDCWD ? resolved("/proc/self/cwd") : pathOf(folder)) + "/" + path;
}

FailurePlan& FailurePlan::shared() {
    // Never destroyed, because threads that wait for the disk outlive main.
    static FailurePlan& plan = *new FailurePlan;
    return plan;
}

FailurePlan::FailurePlan()
    : folder_(settingOf("VANTORO_FAILING_FOLDER")),
      chosen_(settingOf("VANTORO_FAILING_CALL")),
      how_(settingOf("VANTORO_FAILING_HOW")),
      kept_(settingOf("VANTORO_KEPT_RECORDINGS")),
      log_(std::atoi((settingOf("VANTORO_FAILING_LOG") + " -1").c_str())) {}

bool FailurePlan::concerns(const std::string& path) const {
    return !folder_.empty() && (path == folder_ || path.starts_with(folder_ + "/"));
}

std::string FailurePlan::role(std::string path) const {
    constexpr std::string_view removed = " (deleted)";
    if (path == folder_ || path == folder_ + "/") {
        return "folder";
    }
    if (path.ends_with(removed)) {
        path.resize(path.size() - removed.size());
        if (path.rfind("/#") == path.rfind('/')) {
            return "unnamed";
        }
    }
    const bool isTrack = path.find(" (", path.rfind('/')) != std::string::npos;
    if (path.ends_with(".partial.mov")) {
        return "temporary";
    }
    if (path.ends_with(".exporting.m4a")) {
        return isTrack ? "track-staging" : "staging";
    }
    return !path.ends_with(".m4a") ? "other" : isTrack ? "track" : "final";
}

Fate FailurePlan::meet(std::string& name) {
    const std::scoped_lock lock(mutex_);
    name += " " + std::to_string(++met_[name]);
    const bool isChosen = name == chosen_;
    if (isChosen && how_ == "hang") {
        return Fate::hangs;
    }
    if (isChosen && how_ == "die") {
        return Fate::dies;
    }
    isGone_ = isGone_ || (isChosen && how_ == "gone");
    return isChosen || isGone_ ? Fate::fails : Fate::succeeds;
}

bool FailurePlan::isGone() {
    const std::scoped_lock lock(mutex_);
    return isGone_;
}

void FailurePlan::keep(const std::string& path) const {
    if (!kept_.empty() && role(path) == "temporary") {
        const std::string other = kept_ + path.substr(path.rfind('/'));
        ::syscall(SYS_linkat, AT_FDCWD, path.c_str(), AT_FDCWD, other.c_str(), 0);
    }
}

int FailurePlan::error() const {
    return how_ == "ENOSPC" ? ENOSPC : EIO;
}

void FailurePlan::log(const std::string& name, std::string_view result, long long size) const {
    const std::string line = name + " " + std::string(result) + " " + std::to_string(size) + "\n";
    if (log_ >= 0) {
        ::syscall(SYS_write, log_, line.data(), line.size());
    }
}

} // namespace vantoro::testing
