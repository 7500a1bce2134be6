// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/remote/status_text.h"

#include <string>
#include <vector>

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using desktop::ControlStatus;

std::vector<desktop::RunningProgram> running(const ControlStatus& status) {
    return {{.service = "com.vantoro.app", .status = status}};
}

std::string lineIn(const ControlStatus& status) {
    return statusLine(running(status), AppLanguage::english);
}

const ControlStatus recording{
    .state = "recording",
    .startedAt = 1,
    .elapsedSeconds = 75,
    .systemAudio = {.isOn = true, .level = 0.12345, .condition = "silent"},
    .microphone = {.isOn = false, .level = 1, .condition = "delivering"},
    .microphoneID = "usb",
    .folder = "file:///my%20music"};

TEST(StatusTextTest, lineSaysTheStateAndWhatBelongsToIt) {
    EXPECT_EQ(lineIn({}), "Ready");
    EXPECT_EQ(lineIn({.state = "preparing"}), "Preparing");
    EXPECT_EQ(lineIn(recording), "Recording 01:15");
    EXPECT_EQ(lineIn({.state = "processing", .savingProgress = 0.426}), "Saving 43 %");
    EXPECT_EQ(lineIn({.state = "completed", .lastRecording = "file:///my%20music/a.m4a"}),
              "Saved /my music/a.m4a");
    EXPECT_EQ(lineIn({.state = "failed", .message = "It\nfailed."}), "Needs attention It failed.");
    EXPECT_EQ(lineIn({.state = "a state of tomorrow"}), "Ready");
    EXPECT_EQ(statusLine(running(recording), AppLanguage::chinese), "录音中 01:15");
}

TEST(StatusTextTest, lineSaysThatNoProgramRunsOrAnswers) {
    EXPECT_EQ(statusLine({}, AppLanguage::english), "Vantoro is not running.");
    EXPECT_EQ(statusLine({{.service = "a", .status = {}}}, AppLanguage::english),
              "Vantoro is running, but does not answer.");
}

QJsonObject object(const std::vector<desktop::RunningProgram>& programs) {
    const auto text = statusObject(programs, AppLanguage::english);
    EXPECT_EQ(text.find('\n'), std::string::npos);
    return QJsonDocument::fromJson(QByteArray::fromStdString(text)).object();
}

TEST(StatusTextTest, objectHoldsAllDetails) {
    EXPECT_EQ(object(running(recording)),
              (QJsonObject{
                  {"state", "recording"},
                  {"class", "recording"},
                  {"text", "Recording 01:15"},
                  {"elapsedSeconds", 75},
                  {"savingProgress", 0},
                  {"sources", QJsonObject{{"systemAudio", QJsonObject{{"on", true},
                                                                      {"level", 0.123},
                                                                      {"condition", "silent"}}},
                                          {"microphone", QJsonObject{{"on", false},
                                                                     {"level", 1},
                                                                     {"condition", "delivering"},
                                                                     {"id", "usb"}}}}},
                  {"folder", "/my music"},
                  {"lastRecording", QJsonValue()},
                  {"message", QJsonValue()},
              }));
}

TEST(StatusTextTest, objectWithoutAProgramHasItsStateAlone) {
    EXPECT_EQ(object({}), (QJsonObject{{"state", "notRunning"},
                                       {"class", "notRunning"},
                                       {"text", "Vantoro is not running."}}));
    EXPECT_EQ(object({{.service = "a", .status = {}}})["state"], "notAnswering");
}

} // namespace
} // namespace vantoro::testing
