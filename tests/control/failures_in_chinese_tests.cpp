// SPDX-License-Identifier: GPL-3.0-or-later

#include <cerrno>

#include <gtest/gtest.h>

#include "engine/failure.h"
#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {

namespace {

class FailuresInChineseTest : public ViewModelTest {
protected:
    FailuresInChineseTest() {
        preferences.set(Preference::appLanguage, "zh-Hans");
        launchAndSettle();
    }

    std::string messageOfAStartThatFailsWith(const std::exception_ptr& error) {
        recorder.startError = error;
        model->startRecording();
        scheduler.settle();
        return message();
    }

    std::exception_ptr fullDisk() const {
        return std::make_exception_ptr(
            FileFailure(FileAction::write, "/music/.Vantoro-1.partial.mov", ENOSPC));
    }
};

TEST_F(FailuresInChineseTest, missingDefaultMicrophoneIsTold) {
    const auto error = std::make_exception_ptr(Failure(FailureCode::noDefaultMicrophone));
    EXPECT_EQ(messageOfAStartThatFailsWith(error), "没有默认麦克风。");
}

TEST_F(FailuresInChineseTest, folderThatCannotBeMadeIsTold) {
    const auto error =
        std::make_exception_ptr(FileFailure(FileAction::createFolder, "/music/Vantoro", EACCES));
    EXPECT_EQ(messageOfAStartThatFailsWith(error), "无法创建文件夹 Vantoro：权限不足。");
}

TEST_F(FailuresInChineseTest, fullDiskIsToldAsWhatEndedTheRecordingThatIsSaved) {
    record();
    recorder.recorder->onCaptureInterrupted(
        std::make_exception_ptr(RecordingError::writerFailed(fullDisk())));
    scheduler.settle();
    EXPECT_EQ(message(), "音频采集被中断，已成功保存已录制的音频。"
                         "录音失败：无法写入 .Vantoro-1.partial.mov：磁盘空间不足。");
}

TEST_F(FailuresInChineseTest, soundThatFoundNoRoomIsToldWithTheSavedRecording) {
    record();
    recorder.duringStop = [this] {
        recorder.recorder->onSoundLoss(
            {SoundLoss::Cause::notWritten, SoundLoss::Duration(2), std::nullopt, fullDisk()});
    };
    model->toggleRecording();
    scheduler.settle();
    EXPECT_EQ(message(),
              "约 2 秒的声音未能写入磁盘：无法写入 .Vantoro-1.partial.mov：磁盘空间不足。"
              "其余内容已保存。");
}

TEST_F(FailuresInChineseTest, interruptionIsWordedInTheLanguageOfTheMomentWhenItIsTold) {
    record();
    recorder.duringStop = [this] { preferences.set(Preference::appLanguage, "en"); };
    recorder.recorder->onCaptureInterrupted(
        std::make_exception_ptr(Failure(FailureCode::microphoneDisconnected)));
    scheduler.settle();
    EXPECT_EQ(message(), "Audio capture was interrupted. The captured audio was saved "
                         "successfully. The microphone was disconnected.");
}

} // namespace

} // namespace vantoro::testing
