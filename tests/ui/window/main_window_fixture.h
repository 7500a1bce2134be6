// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>
#include <vector>

#include <QtTest/QTest>
#include <QtWidgets/QMessageBox>

#include <gtest/gtest.h>

#include "tests/control/view_model_fixture.h"
#include "tests/ui/window/window_parts.h"
#include "tests/update/local_server.h"
#include "ui/window/main_window.h"
#include "update/record_request.h"

namespace vantoro::testing {

/// The window of version 1.0, with a server that offers 2.0 unless a test changes that.
class MainWindowTest : public ViewModelTest {
protected:
    static constexpr int patience = 20000; // milliseconds

    LocalServer::Answer answer =
        always(response(200, R"({"version":"2.0","filename":"Vantoro-2.0.tar.gz"})"));
    LocalServer server{
        [this](QSslSocket& connection, const QByteArray& request) { answer(connection, request); }};
    std::vector<QUrl> opened;
    std::vector<bool> hadMessage; ///< whether there was a message at each change
    std::unique_ptr<LanguageSettings> language;
    std::unique_ptr<UpdateChecker> updates;
    std::unique_ptr<MainWindow> window;

    void make() {
        if (!model) {
            launchAndSettle();
        }
        language = std::make_unique<LanguageSettings>(preferences);
        updates = std::make_unique<UpdateChecker>(
            preferences, "1.0",
            [this](const QUrl& location) {
                opened.push_back(location);
                hadMessage.push_back(updates->values().message.has_value());
            },
            UpdateSource{.baseLocation = server.location(),
                         .ask = askOverNetwork(trustInLocalServers())});
        window = std::make_unique<MainWindow>(*model, *language, *updates, preferences);
    }

    void show() {
        make();
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get(), patience));
    }

    void showIn(Case state) {
        lead(state);
        show();
    }

    void TearDown() override {
        window.reset();
        updates.reset();
        language.reset();
    }

    void checkForUpdates() {
        updates->checkForUpdates();
        ASSERT_TRUE(QTest::qWaitFor([this] { return !updates->values().isChecking; }, patience));
    }

    /// Fails a start.
    void fail(const std::string& text) {
        recorder.startError = failure(text);
        model->startRecording();
        scheduler.settle();
    }

    /// The open alert; null if there is none.
    QMessageBox* alert() const {
        const auto open = visible<QMessageBox>(*window);
        EXPECT_LE(open.size(), 1U);
        return open.empty() ? nullptr : open.front();
    }

    /// Runs the event loop's next iterations.
    static void settleEvents() {
        for (int turn = 0; turn < 3; ++turn) {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents();
        }
    }
};

} // namespace vantoro::testing
