// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/remote/control_service.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/platform/desktop/bus/private_bus.h"

namespace vantoro::testing {
namespace {

using desktop::ControlFailure;
using desktop::ControlStatus;
using desktop::SavedRecording;

const QString service = "com.vantoro.app.recording.p1";

/// Answers only when the test does.
class ScriptedProgram final : public desktop::ControlledProgram {
public:
    ControlStatus shown;
    std::vector<std::string> calls; ///< with their tokens
    desktop::StartAnswer answerStart;
    desktop::StopAnswer answerStop;
    std::expected<std::uint32_t, ControlFailure> markAnswer = 7U;

    ControlStatus status() const override { return shown; }

    void start(const std::string& token, desktop::StartAnswer answered) override {
        calls.push_back("start " + token);
        answerStart = std::move(answered);
    }

    void stop(const std::string& token, desktop::StopAnswer answered) override {
        calls.push_back("stop " + token);
        answerStop = std::move(answered);
    }

    std::expected<std::uint32_t, ControlFailure> mark(const std::string& text) override {
        calls.push_back("mark " + text);
        return markAnswer;
    }
};

/// Receives the names of the properties in each signal.
class ChangeListener final : public QObject {
    Q_OBJECT

public:
    std::vector<QStringList> changes;

public Q_SLOTS:

    void changed(const QString& /*interface*/, const QVariantMap& values,
                 const QStringList& /*invalid*/) {
        changes.push_back(values.keys());
    }
};

class ControlServiceTest : public ::testing::Test {
protected:
    PrivateBus bus;
    QDBusConnection caller = bus.connect("caller");
    desktop::BusConnection connection{bus.address().toStdString()};
    std::optional<desktop::ControlService> control{std::in_place, connection};
    ScriptedProgram program;

    ControlServiceTest() {
        bool isNamed = false;
        connection.requestName(service.toStdString(),
                               [&](std::optional<bool> isOurs) { isNamed = isOurs == true; });
        EXPECT_TRUE(EventLoop::runUntil([&] { return isNamed; }));
    }

    ~ControlServiceTest() override { QDBusConnection::disconnectFromBus("caller"); }

    QDBusPendingCall call(const QString& method, const QVariantList& arguments,
                          const QString& interface = "com.vantoro.Control1") {
        auto message =
            QDBusMessage::createMethodCall(service, "/com/vantoro/app", interface, method);
        message.setArguments(arguments);
        return caller.asyncCall(message);
    }

    static QDBusMessage answerOf(const QDBusPendingCall& asked) {
        const QDBusPendingCallWatcher watcher(asked);
        EXPECT_TRUE(EventLoop::runUntil([&] { return watcher.isFinished(); }));
        return watcher.reply();
    }

    bool isEventuallyCalled(std::size_t times = 1) {
        return EventLoop::runUntil([&] { return program.calls.size() >= times; });
    }
};

TEST_F(ControlServiceTest, startIsAnsweredWhenTheProgramAnswers) {
    control->serve(&program);
    const auto asked = call("Start", {QVariantMap{{"activation-token", "leave"}}});
    ASSERT_TRUE(isEventuallyCalled());
    EXPECT_FALSE(asked.isFinished());
    program.answerStart({});
    const auto answer = answerOf(asked);
    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << answer.errorMessage().toStdString();
    EXPECT_EQ(program.calls, std::vector<std::string>({"start leave"}));
}

TEST_F(ControlServiceTest, stopReturnsTheRecordingItsCompletenessAndTheMessage) {
    control->serve(&program);
    const auto asked = call("Stop", {QVariantMap()});
    ASSERT_TRUE(isEventuallyCalled());
    program.answerStop(
        SavedRecording{.uri = "file:///a.m4a", .isComplete = false, .message = "some is missing"});
    EXPECT_EQ(answerOf(asked).arguments(),
              QVariantList({"file:///a.m4a", false, "some is missing"}));
}

TEST_F(ControlServiceTest, markReturnsItsNumberOrWhyThereIsNone) {
    control->serve(&program);
    EXPECT_EQ(answerOf(call("Mark", {"a question", QVariantMap()})).arguments(),
              QVariantList(1, QVariant(7U)));
    EXPECT_EQ(program.calls, std::vector<std::string>({"mark a question"}));
    program.markAnswer = std::unexpected(
        ControlFailure{.error = desktop::notRecordingError, .text = "nothing is recorded"});
    EXPECT_EQ(answerOf(call("Mark", {"", QVariantMap()})).errorName(), desktop::notRecordingError);
}

TEST_F(ControlServiceTest, failureIsAnErrorWithItsTextWhateverBytesItHas) {
    control->serve(&program);
    for (const QString method : {"Start", "Stop"}) {
        const auto asked = call(method, {QVariantMap()});
        ASSERT_TRUE(isEventuallyCalled(program.calls.size() + 1));
        const auto failure = std::unexpected(
            ControlFailure{.error = desktop::failedError, .text = "100 % full: \xff.m4a"});
        method == "Start" ? program.answerStart(failure) : program.answerStop(failure);
        const auto answer = answerOf(asked);
        EXPECT_EQ(answer.errorName(), desktop::failedError);
        EXPECT_EQ(answer.errorMessage(), QString::fromUtf8("100 % full: \uFFFD.m4a"));
    }
}

TEST_F(ControlServiceTest, callsThatComeBeforeTheProgramAreDeliveredInOrder) {
    const auto start = call("Start", {QVariantMap()});
    const auto stop = call("Stop", {QVariantMap{{"desktop-startup-id", "older"}}});
    EXPECT_EQ(answerOf(call("Ping", {}, "org.freedesktop.DBus.Peer")).type(),
              QDBusMessage::ReplyMessage); // the calls before it have arrived, too
    control->serve(&program);
    ASSERT_TRUE(isEventuallyCalled(2));
    EXPECT_EQ(program.calls, std::vector<std::string>({"start ", "stop older"}));
}

TEST_F(ControlServiceTest, callWithoutItsOptionsIsRefused) {
    control->serve(&program);
    EXPECT_EQ(answerOf(call("Start", {})).type(), QDBusMessage::ErrorMessage);
    EXPECT_TRUE(program.calls.empty());
}

TEST_F(ControlServiceTest, propertiesAreThoseOfTheMoment) {
    control->serve(&program);
    program.shown.state = "recording";
    program.shown.elapsedSeconds = 75;
    program.shown.systemAudio.level = 0.5;
    program.shown.message = "\xff";
    const auto answer =
        answerOf(call("GetAll", {"com.vantoro.Control1"}, "org.freedesktop.DBus.Properties"));
    const auto values = qdbus_cast<QVariantMap>(answer.arguments().value(0));
    EXPECT_EQ(values.value("State"), "recording");
    EXPECT_EQ(values.value("ElapsedSeconds").toLongLong(), 75);
    EXPECT_EQ(values.value("SystemAudioLevel").toDouble(), 0.5);
    EXPECT_EQ(values.value("Microphone"), true);
    EXPECT_EQ(values.value("Version").toUInt(), desktop::controlVersion);
    EXPECT_EQ(values.value("Message"), QString(QChar(0xFFFD)));
    EXPECT_EQ(values.size(), 15);
}

TEST_F(ControlServiceTest, onlyWhatChangesIsSignalledAndNoLevels) {
    ChangeListener listener;
    ASSERT_TRUE(caller.connect(service, "/com/vantoro/app", "org.freedesktop.DBus.Properties",
                               "PropertiesChanged", &listener,
                               SLOT(changed(QString, QVariantMap, QStringList))));
    control->serve(&program);
    program.shown.elapsedSeconds = 1;
    program.shown.savingProgress = 0.5;
    program.shown.microphone.level = 0.5;
    control->publish();
    program.shown.state = "recording";
    program.shown.microphone.condition = "muted";
    control->publish();
    control->publish();
    program.shown.message = "something";
    control->publish();
    ASSERT_TRUE(EventLoop::runUntil([&] { return listener.changes.size() >= 2; }));
    EXPECT_EQ(listener.changes,
              (std::vector<QStringList>{{"MicrophoneCondition", "State"}, {"Message"}}));
}

TEST_F(ControlServiceTest, answerAfterItsEndDoesNothing) {
    control->serve(&program);
    call("Start", {QVariantMap()});
    ASSERT_TRUE(isEventuallyCalled());
    control.reset();
    program.answerStart({});
}

/// Without spaces, which have no meaning there.
QString condensed(QString xml) {
    return xml
        .remove(QRegularExpression("<!--.*?-->", QRegularExpression::DotMatchesEverythingOption))
        .remove(QRegularExpression("\\s"));
}

TEST_F(ControlServiceTest, introspectionIsAsPublished) {
    QFile published(VANTORO_CONTROL_XML);
    ASSERT_TRUE(published.open(QFile::ReadOnly));
    const auto expected = condensed(QString::fromUtf8(published.readAll()))
                              .section("<node>", 1)
                              .section("</node>", 0, 0);
    EXPECT_GT(expected.size(), 500);
    const auto answer = answerOf(call("Introspect", {}, "org.freedesktop.DBus.Introspectable"));
    const auto served = condensed(answer.arguments().value(0).toString());
    EXPECT_TRUE(served.contains(expected)) << answer.arguments().value(0).toString().toStdString();
}

TEST(ControlServiceWithoutABusTest, doesNothing) {
    desktop::BusConnection none("");
    desktop::ControlService control(none);
    ScriptedProgram program;
    control.serve(&program);
    program.shown.state = "recording";
    control.publish();
    EXPECT_TRUE(program.calls.empty());
}

} // namespace
} // namespace vantoro::testing

#include "control_service_tests.moc"
