// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <condition_variable>
#include <deque>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include <QtCore/QElapsedTimer>
#include <QtCore/QTemporaryDir>
#include <QtDBus/QDBusMessage>

#include <gtest/gtest.h>

#include "platform/desktop/opening/desktop_opener.h"
#include "tests/platform/desktop/bus/private_bus.h"
#include "tests/platform/desktop/opening/private_applications.h"

namespace vantoro::testing {

/// What other threads put in, to be waited for.
template <class Thing>
class Arrivals {
public:
    void add(const Thing& thing) {
        const std::lock_guard lock(mutex_);
        things_.push_back(thing);
        arrived_.notify_one();
    }

    /// None when it takes too long.
    std::optional<Thing> next() {
        std::unique_lock lock(mutex_);
        if (!arrived_.wait_for(lock, std::chrono::seconds(30), [&] { return !things_.empty(); })) {
            return std::nullopt;
        }
        auto thing = things_.front();
        things_.pop_front();
        return thing;
    }

    bool empty() const {
        const std::lock_guard lock(mutex_);
        return things_.empty();
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<Thing> things_;
};

/// An opener on a bus of its own, outside any sandbox at first, without any service.
class OpenerTest : public ::testing::Test {
protected:
    PrivateBus privateBus;
    QTemporaryDir temporary;
    std::filesystem::path folder = temporary.path().toStdString();
    PrivateApplications& applications = PrivateApplications::instance();
    desktop::OpenerSurroundings surroundings{.sessionBus = privateBus.address().toStdString(),
                                             .sandboxDescription = folder / "sandbox-info",
                                             .desktops = "",
                                             .searchPath = (folder / "programs").string(),
                                             .helpPage = {},
                                             .limit = std::chrono::seconds(20)};
    std::unique_ptr<desktop::DesktopOpener> current;
    Arrivals<QDBusMessage> questions; // of the services below

    void SetUp() override;
    void TearDown() override;

    /// Made when it is first asked for: the surroundings may be changed until then.
    desktop::DesktopOpener& opener();

    std::filesystem::path makeFile(const std::string& name) const;
    void enterSandbox() const;

    /// Notes what it is asked, and agrees.
    BusService::Answer agreeing();
    /// The same, and never answers.
    BusService::Answer silent();
    /// The same, and refuses what is not called `exception`.
    BusService::Answer refusing(const QString& exception = {});

    /// What was said on standard error.
    static Arrivals<std::string>& warnings();
};

} // namespace vantoro::testing
