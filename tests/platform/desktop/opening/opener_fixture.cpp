// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/platform/desktop/opening/opener_fixture.h"

#include <fstream>

#include <QtDBus/QDBusError>

namespace vantoro::testing {

namespace {

std::unique_ptr<Arrivals<std::string>> said;

void note(QtMsgType, const QMessageLogContext&, const QString& message) {
    said->add(message.toStdString());
}

} // namespace

Arrivals<std::string>& OpenerTest::warnings() {
    return *said;
}

void OpenerTest::SetUp() {
    said = std::make_unique<Arrivals<std::string>>();
    qInstallMessageHandler(note);
    applications.forgetStarted();
}

void OpenerTest::TearDown() {
    current.reset();
    std::filesystem::remove_all(folder); // Qt cannot remove names that are not UTF-8
    qInstallMessageHandler(nullptr);
    EXPECT_TRUE(said->empty()) << said->next().value_or("");
}

desktop::DesktopOpener& OpenerTest::opener() {
    if (!current) {
        current = std::make_unique<desktop::DesktopOpener>(surroundings);
    }
    return *current;
}

std::filesystem::path OpenerTest::makeFile(const std::string& name) const {
    std::ofstream(folder / name) << "sound";
    return folder / name;
}

void OpenerTest::enterSandbox() const {
    std::ofstream(surroundings.sandboxDescription) << "[Application]\nname=app\n";
}

BusService::Answer OpenerTest::agreeing() {
    return [this](const QDBusMessage& question) {
        questions.add(question);
        return question.createReply();
    };
}

BusService::Answer OpenerTest::silent() {
    return [this](const QDBusMessage& question) {
        questions.add(question);
        return QDBusMessage();
    };
}

BusService::Answer OpenerTest::refusing(const QString& exception) {
    return [=, this](const QDBusMessage& question) {
        questions.add(question);
        return question.member() == exception
                   ? question.createReply()
                   : question.createErrorReply(QDBusError::Failed, "not today");
    };
}

} // namespace vantoro::testing
