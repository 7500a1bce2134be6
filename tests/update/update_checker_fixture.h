// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/support/memory_preferences.h"
#include "tests/update/local_server.h"
#include "update/record_request.h"
#include "update/update_checker.h"

namespace vantoro::testing {

using Seen = std::vector<UpdateChecker::Property>;

inline const QByteArray newerRecord = R"({"version":"2.0","filename":"Vantoro-2.0.tar.gz"})";
inline const std::string failed = "Could not check for updates. Try again later.";
inline const std::string latest = "You are up to date.";

/// A checker of version 1.0 and a server that offers 2.0, unless a test changes that.
class UpdateCheckerTest : public ::testing::Test {
protected:
    using Property = UpdateChecker::Property;

    EventLoop loop;
    MemoryPreferences preferences = preferencesIn("en");
    LocalServer::Answer answer = always(response(200, newerRecord));
    LocalServer server{
        [this](QSslSocket& connection, const QByteArray& request) { answer(connection, request); }};
    std::vector<QUrl> opened;
    std::unique_ptr<UpdateChecker> checker;
    Seen seen;

    void SetUp() override { make("1.0"); }

    void make(const std::string& currentVersion) {
        make(currentVersion,
             {.baseLocation = server.location(), .ask = askOverNetwork(trustInLocalServers())});
    }

    void make(const std::string& currentVersion, const UpdateSource& source) {
        checker = std::make_unique<UpdateChecker>(
            preferences, currentVersion,
            [this](const QUrl& location) { opened.push_back(location); }, source);
        QObject::connect(checker.get(), &UpdateChecker::propertyChanged,
                         [this](Property property) { seen.push_back(property); });
    }

    const UpdateChecker::Values& values() const { return checker->values(); }

    void check() {
        checker->checkForUpdates();
        EXPECT_TRUE(EventLoop::runUntil([this] { return !values().isChecking; }));
    }

    void check(const QByteArray& body) {
        answer = always(response(200, body));
        check();
    }

    /// Starts a check that the server receives but does not answer.
    void beginCheckThatWaits() {
        const auto heard = server.requests.size();
        answer = [](QSslSocket&, const QByteArray&) {};
        checker->checkForUpdates();
        ASSERT_TRUE(EventLoop::runUntil([&] { return server.requests.size() > heard; }));
    }

    void expectFailure() const {
        EXPECT_EQ(values().message, failed);
        EXPECT_EQ(values().downloadURL, std::nullopt);
        EXPECT_FALSE(values().isChecking);
    }
};

} // namespace vantoro::testing
