// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/remote/control_client.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

#include <sys/eventfd.h>
#include <unistd.h>

#include <QtCore/QVariantMap>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusMessage>

#include <gtest/gtest.h>

#include "platform/posix/file_descriptor.h"
#include "tests/control/event_loop.h"
#include "tests/platform/desktop/bus/private_bus.h"
#include "tests/platform/desktop/bus/silent_bus.h"

namespace vantoro::testing {
namespace {

using namespace std::chrono_literals;
using desktop::ControlClient;
using desktop::NoAnswer;

const QString window = "com.vantoro.app";
const QString recorder = "com.vantoro.app.recording.p1";
/// For programs that never answer.
constexpr ControlClient::Limits brief{.silence = 300ms, .start = 300ms};
/// For programs that do.
constexpr ControlClient::Limits ample{.silence = patience, .start = patience};

/// A program's answers; `method` answers its methods.
BusService::Answer programWith(const QString& state, const BusService::Answer& method = {}) {
    return [=](const QDBusMessage& question) {
        if (question.member() == "GetAll") {
            return question.createReply(QVariantMap{
                {"State", state}, {"ElapsedSeconds", qint64(7)}, {"Mood", QStringList()}});
        }
        return question.interface() == "com.vantoro.Control1" ? method(question)
                                                              : question.createReply();
    };
}

BusService::Answer refusing(const QString& error, const QString& text) {
    return [=](const QDBusMessage& question) { return question.createErrorReply(error, text); };
}

class ControlClientTest : public ::testing::Test {
protected:
    PrivateBus bus;
    std::string address = bus.address().toStdString();
    posix::FileDescriptor interruption{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};

    ControlClient client(const ControlClient::Limits& limits = ample) const {
        return ControlClient(address, interruption.get(), limits);
    }
};

TEST_F(ControlClientTest, findsTheProgramsAndNoOthers) {
    EXPECT_TRUE(client().programs()->empty());
    const BusService one(bus, window, programWith("idle"));
    const BusService two(bus, recorder, programWith("recording"));
    const BusService other(bus, "com.vantoro.application", programWith("recording"));
    const auto programs = client().programs();
    ASSERT_TRUE(programs);
    ASSERT_EQ(programs->size(), 2U);
    for (const auto& program : *programs) {
        ASSERT_TRUE(program.status);
        EXPECT_EQ(program.status->state,
                  program.service == window.toStdString() ? "idle" : "recording");
        EXPECT_EQ(program.status->elapsedSeconds, 7);
    }
}

TEST_F(ControlClientTest, programThatHangsIsFoundWithoutAStatusAndWaitedForOnce) {
    const BusService hanging(bus, window, noAnswer);
    const BusService working(bus, recorder, programWith("recording"));
    auto asking = client(brief);
    const auto ask = [&] {
        const auto programs = asking.programs();
        ASSERT_TRUE(programs && programs->size() == 2);
        for (const auto& program : *programs) {
            EXPECT_EQ(program.status.has_value(), program.service == recorder.toStdString());
        }
    };
    ask();
    const auto before = std::chrono::steady_clock::now();
    for (int round = 0; round < 100; ++round) {
        ask();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - before, 100 * brief.silence);
}

TEST_F(ControlClientTest, startReturnsWhenTheProgramAnswers) {
    const BusService answering(bus, window, programWith("idle", [](const auto& question) {
                                   return question.createReply();
                               }));
    EXPECT_TRUE(client().start(window.toStdString(), "leave"));
}

TEST_F(ControlClientTest, programThatTheBusCanStartIsStarted) {
    bus.addStartableService(window);
    const auto started = client(brief).start(window.toStdString(), "");
    ASSERT_FALSE(started); // it only leaves a trace
    EXPECT_EQ(started.error().noAnswer, NoAnswer::late);
    EXPECT_TRUE(EventLoop::runUntil([&] { return bus.startedAService(); }));
}

TEST_F(ControlClientTest, programThatNobodyCanStartIsTold) {
    const auto started = client().start(window.toStdString(), "");
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().noAnswer, NoAnswer::notStarted);
    EXPECT_EQ(client(brief).awaitService(window.toStdString()).error(), NoAnswer::notStarted);
}

TEST_F(ControlClientTest, serviceThatIsThereIsNotAwaited) {
    const BusService there(bus, window, programWith("idle"));
    EXPECT_TRUE(client().awaitService(window.toStdString()));
}

TEST_F(ControlClientTest, stopReturnsTheSavedRecording) {
    const BusService answering(bus, recorder, programWith("recording", [](const auto& question) {
                                   return question.createReply(
                                       {"file:///a.m4a", false, "some is missing"});
                               }));
    const auto saved = client().stop(recorder.toStdString(), "");
    ASSERT_TRUE(saved);
    EXPECT_EQ(*saved,
              (desktop::SavedRecording{
                  .uri = "file:///a.m4a", .isComplete = false, .message = "some is missing"}));
}

TEST_F(ControlClientTest, failureIsToldAsTheProgramTellsIt) {
    const BusService failing(bus, recorder,
                             programWith("recording", refusing(desktop::failedError, "disk full")));
    const auto saved = client().stop(recorder.toStdString(), "");
    ASSERT_FALSE(saved);
    EXPECT_FALSE(saved.error().noAnswer);
    EXPECT_EQ(saved.error().told,
              (desktop::ControlFailure{.error = desktop::failedError, .text = "disk full"}));
}

TEST_F(ControlClientTest, programThatAnswersOtherQuestionsMaySaveForLong) {
    const BusService slow(bus, recorder, programWith("recording", noAnswer));
    const auto before = std::chrono::steady_clock::now();
    auto waiting = client(brief);
    const auto started = waiting.start(recorder.toStdString(), "");
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().noAnswer, NoAnswer::late);
    EXPECT_GE(std::chrono::steady_clock::now() - before, brief.start);
}

TEST_F(ControlClientTest, programThatHangsMeanwhileIsNotWaitedForLonger) {
    const BusService working(bus, recorder, programWith("recording", noAnswer));
    auto waiting = client(brief);
    ASSERT_TRUE(waiting.programs());
    bus.freeze(); // as if the program were: nothing answers
    const auto saved = waiting.stop(recorder.toStdString(), "");
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error().noAnswer, NoAnswer::silent);
}

TEST_F(ControlClientTest, programThatEndsMeanwhileIsTold) {
    const auto ends = refusing("org.freedesktop.DBus.Error.NoReply", "it disconnected");
    const BusService dying(bus, recorder, programWith("recording", ends));
    const auto saved = client().stop(recorder.toStdString(), "");
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error().noAnswer, NoAnswer::gone);
}

TEST_F(ControlClientTest, interruptionEndsEachWait) {
    const BusService hanging(bus, recorder, noAnswer);
    ASSERT_EQ(::eventfd_write(interruption.get(), 1), 0);
    EXPECT_EQ(client().programs().error(), NoAnswer::interrupted);
    EXPECT_EQ(client().stop(recorder.toStdString(), "").error().noAnswer, NoAnswer::interrupted);
    EXPECT_EQ(client().awaitService(window.toStdString()).error(), NoAnswer::interrupted);
    EXPECT_FALSE(client().awaitChange(std::chrono::steady_clock::now() + patience));
}

TEST_F(ControlClientTest, changeIsThatAProgramComes) {
    auto following = client();
    following.follow();
    EXPECT_TRUE(following.programs()->empty());
    const BusService coming(bus, recorder, programWith("recording"));
    EXPECT_TRUE(following.awaitChange(std::chrono::steady_clock::now() + patience));
    EXPECT_EQ(following.programs()->size(), 1U);
}

TEST_F(ControlClientTest, endOfTheBusEndsTheWait) {
    auto following = client();
    following.follow();
    EXPECT_TRUE(following.programs());
    bus.end();
    EXPECT_FALSE(following.awaitChange(std::chrono::steady_clock::now() + patience));
    EXPECT_EQ(following.programs().error(), NoAnswer::noBus);
}

TEST(ControlClientWithoutABusTest, saysSo) {
    for (const std::string address : {"", "unix:path=/nowhere/at/all"}) {
        ControlClient client(address, -1);
        EXPECT_EQ(client.programs().error(), NoAnswer::noBus);
        EXPECT_EQ(client.start("com.vantoro.app", "").error().noAnswer, NoAnswer::noBus);
        EXPECT_EQ(client.stop("com.vantoro.app", "").error().noAnswer, NoAnswer::noBus);
    }
}

TEST(ControlClientWithoutABusTest, busThatHangsIsNotWaitedForLonger) {
    const SilentBus silent;
    ControlClient client(silent.address(), -1, brief);
    EXPECT_EQ(client.programs().error(), NoAnswer::silentBus);
}

} // namespace
} // namespace vantoro::testing
