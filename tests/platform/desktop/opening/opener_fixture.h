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

/// A queue filled by other threads.
template <class Thing>
class Arrivals {
public:
    void add(const Thing& thing) {
        const std::lock_guard lock(mutex_);
        things_.push_back(thing);
        arrived_.notify_one();
    }

    /// Waits for the next one; none on timeout.
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

/// An opener on a private bus; initially without a sandbox or services.
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
    Arrivals<QDBusMessage> questions; // received by the services below

    void SetUp() override;
    void TearDown() override;

    /// Created on first use, so that a test can change the surroundings before.
    desktop::DesktopOpener& opener();

    std::filesystem::path makeFile(const std::string& name) const;
    void enterSandbox() const;

    /// Records the question and agrees.
    BusService::Answer agreeing();
    /// Records the question and never answers.
    BusService::Answer silent();
    /// Records the question and refuses, unless the method is `exception`.
    BusService::Answer refusing(const QString& exception = {});

    /// What was printed on standard error.
    static Arrivals<std::string>& warnings();
};

} // namespace vantoro::testing
