// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/content_view.h"

#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QSlider>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/control/view_model_fixture.h"
#include "tests/ui/window/window_parts.h"

namespace vantoro::testing {
namespace {

/// The content view in a window, examined as a user sees it: by names and visible texts.
class ContentViewTest : public ViewModelTest {
protected:
    std::unique_ptr<ContentView> view;

    void show() {
        if (!model) {
            launchAndSettle();
        }
        view = std::make_unique<ContentView>(*model, preferences);
        view->resize(500, 600);
        view->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(view.get()));
    }

    void showIn(Case state) {
        lead(state);
        show();
    }

    void TearDown() override { view.reset(); }

    template <class Widget>
    Widget* find(const QString& name) const {
        return named<Widget>(*view, name);
    }

    bool isSeen(const QString& text) const { return testing::isSeen(*view, text); }

    RecordButton* recordButton() const { return view->findChild<RecordButton*>(); }

    QComboBox* picker() const { return find<QComboBox>("Input"); }
};

TEST_F(ContentViewTest, showsHowFarALongSavingIs) {
    showIn(Case::processing);
    recorder.recorder->onExportProgress(0.25);
    scheduler.runMain();
    EXPECT_FALSE(isSeen("25 %"));
    scheduler.advance(std::chrono::seconds(1));
    EXPECT_TRUE(isSeen("25 %"));
    const auto* const bar = find<QProgressBar>("25 %");
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->value() * 4, bar->maximum());
    scheduler.settle();
    EXPECT_FALSE(isSeen("25 %"));
    EXPECT_FALSE(bar->isVisible());
}

TEST_F(ContentViewTest, dimsTheVolumesOfSourcesThatAreOff) {
    show();
    QTest::mouseClick(find<ToggleSwitch>("System Audio"), Qt::LeftButton);
    EXPECT_FALSE(values().captureSystemAudio);
    EXPECT_FALSE(find<QSlider>("System level")->isEnabled());
    EXPECT_TRUE(find<QSlider>("Mic level")->isEnabled());
    EXPECT_TRUE(recordButton()->isEnabled());
    QTest::mouseClick(find<ToggleSwitch>("Microphone"), Qt::LeftButton);
    EXPECT_FALSE(find<QSlider>("Mic level")->isEnabled());
    EXPECT_FALSE(recordButton()->isEnabled());
}

TEST_F(ContentViewTest, offersToStopWhileRecordingWhateverTheSources) {
    showIn(Case::recording);
    EXPECT_EQ(recordButton()->text(), "Stop Recording");
    model->setCaptureSystemAudio(false);
    model->setCaptureMicrophone(false);
    EXPECT_TRUE(recordButton()->isEnabled());
    QTest::mouseClick(recordButton(), Qt::LeftButton);
    EXPECT_EQ(state(), Case::processing);
    EXPECT_EQ(recordButton()->text(), "Start Recording");
    EXPECT_FALSE(recordButton()->isEnabled());
}

TEST_F(ContentViewTest, startsARecording) {
    show();
    EXPECT_EQ(recordButton()->text(), "Start Recording");
    QTest::keyClick(recordButton(), Qt::Key_Space);
    EXPECT_EQ(state(), Case::preparing);
}

TEST_F(ContentViewTest, letsTheMicrophoneBePickedUnlessBusyOrThereIsNone) {
    for (const auto& [state, enabled] : {
             std::pair{Case::idle, true},
             std::pair{Case::preparing, false},
             std::pair{Case::recording, false},
             std::pair{Case::processing, false},
             std::pair{Case::completed, true},
             std::pair{Case::failed, true},
         }) {
        ViewModelWorld world;
        world.lead(state);
        const ContentView content(*world.model, world.preferences);
        EXPECT_EQ(content.findChild<InputRow*>()->isEnabled(), enabled) << static_cast<int>(state);
    }
    devices.list.clear();
    show();
    ASSERT_NE(picker(), nullptr);
    EXPECT_FALSE(picker()->isEnabled());
}

TEST_F(ContentViewTest, showsThePickerWhileTheMicrophoneIsOnAndPassesThePickOn) {
    show();
    EXPECT_EQ(picker()->currentText(), "Built-in");
    picker()->setCurrentIndex(1);
    Q_EMIT picker()->activated(1);
    EXPECT_EQ(values().selectedMicrophoneID, "headset");
    EXPECT_EQ(picker()->currentText(), "Headset");
    model->setCaptureMicrophone(false);
    EXPECT_EQ(picker(), nullptr);
}

TEST_F(ContentViewTest, saysWhatCanBeDoneAboutAPermission) {
    const QString note = "Click Start Recording to request microphone access.";
    const QString settings = "Settings: Microphone";
    microphone.current = AuthorizationStatus::notDetermined;
    show();
    EXPECT_TRUE(isSeen("Required"));
    EXPECT_TRUE(isSeen(note));
    EXPECT_EQ(find<QPushButton>(settings), nullptr);
    for (const auto refused : {AuthorizationStatus::denied, AuthorizationStatus::restricted}) {
        microphone.current = refused;
        refresh();
        EXPECT_TRUE(isSeen("Required"));
        EXPECT_FALSE(isSeen(note));
        ASSERT_NE(find<QPushButton>(settings), nullptr);
    }
    QTest::mouseClick(find<QPushButton>(settings), Qt::LeftButton);
    EXPECT_EQ(opener.calls, std::vector<std::string>{"settings Privacy_Microphone"});
    microphone.current = AuthorizationStatus::authorized;
    refresh();
    EXPECT_FALSE(isSeen("Required"));
    EXPECT_EQ(find<QPushButton>(settings), nullptr);
}

TEST_F(ContentViewTest, showsLevelsWhileRecordingOnly) {
    for (const auto state :
         {Case::idle, Case::preparing, Case::processing, Case::completed, Case::failed}) {
        ViewModelWorld world;
        world.lead(state);
        const ContentView content(*world.model, world.preferences);
        EXPECT_TRUE(content.findChild<LevelBar*>()->parentWidget()->parentWidget()->isHidden());
    }
    showIn(Case::recording);
    reportLevel(AudioLevelSource::systemAudio, 0.5F);
    reportLevel(AudioLevelSource::microphone, 0.999F);
    auto* const bar = find<LevelBar>("System");
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->size(), QSize(76, 6));
    EXPECT_EQ(bar->value(), 50);
    EXPECT_TRUE(isSeen("50%"));
    EXPECT_TRUE(isSeen("99%"));
    const auto image = bar->grab().toImage();
    const auto fill = toneColour(Tone::systemAudio, bar->palette()).rgb();
    EXPECT_EQ(image.pixel(37, 3), fill);
    EXPECT_NE(image.pixel(38, 3), fill);
}

TEST_F(ContentViewTest, meterOfASourceThatGivesNothingSaysSo) {
    showIn(Case::recording);
    reportLevel(AudioLevelSource::microphone, 0.5F);
    auto* const bar = find<LevelBar>("Mic");
    ASSERT_NE(bar, nullptr);
    const QSize sizeBefore = bar->parentWidget()->size();
    recorder.recorder->onSourceCondition(AudioLevelSource::microphone, SourceCondition::muted);
    scheduler.runMain();
    const QString muted = "Muted in the desktop's sound settings";
    EXPECT_EQ(bar->parentWidget()->toolTip(), muted);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(bar)->text(QAccessible::Description), muted);
    EXPECT_TRUE(isSeen("!"));
    EXPECT_FALSE(isSeen("50%"));
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(bar->parentWidget()->size(), sizeBefore);
    EXPECT_EQ(find<LevelBar>("System")->parentWidget()->toolTip(), QString());
    recorder.recorder->onSourceCondition(AudioLevelSource::microphone, SourceCondition::delivering);
    scheduler.runMain();
    EXPECT_EQ(bar->parentWidget()->toolTip(), QString());
    EXPECT_TRUE(isSeen("50%"));
}

TEST_F(ContentViewTest, showsAndSetsVolumes) {
    show();
    EXPECT_TRUE(isSeen("90%"));
    model->setSystemVolume(0.995);
    EXPECT_TRUE(isSeen("99%"));
    EXPECT_EQ(values().systemVolume, 0.995);
    auto* const slider = find<QSlider>("Mic level");
    slider->setValue(slider->maximum());
    EXPECT_EQ(values().microphoneVolume, 1.25);
    EXPECT_TRUE(isSeen("125%"));
}

TEST_F(ContentViewTest, offersTheRecordingThatWasSavedUntilTheNextBegins) {
    showIn(Case::completed);
    ASSERT_NE(find<SymbolButton>("Play recording"), nullptr);
    EXPECT_TRUE(isSeen("recorded.m4a"));
    QTest::mouseClick(find<SymbolButton>("Play recording"), Qt::LeftButton);
    EXPECT_EQ(opener.calls, std::vector<std::string>{"open /music/recorded.m4a"});
    model->startRecording();
    EXPECT_EQ(find<SymbolButton>("Play recording"), nullptr);
}

TEST_F(ContentViewTest, bringsTheRecordingThatWasSavedIntoSight) {
    showIn(Case::recording);
    view->resize(500, 300);
    model->toggleRecording();
    scheduler.settle();
    auto* const panel = view->findChild<CompletedPanel*>();
    EXPECT_TRUE(EventLoop::runUntil([panel] {
        return !panel->rect().isEmpty() && panel->visibleRegion().contains(panel->rect()) &&
               panel->visibleRegion().boundingRect() == panel->rect();
    }));
}

TEST_F(ContentViewTest, asksForTheMicrophoneOnceItKnowsThatThisIsNeeded) {
    const QString note = "Click Start Recording to request microphone access.";
    microphone.current = AuthorizationStatus::notDetermined;
    model =
        std::make_unique<RecordingViewModel>(std::make_unique<FakeRecorder>(recorder), platform());
    show();
    EXPECT_FALSE(isSeen(note));
    scheduler.settle();
    EXPECT_TRUE(isSeen(note));
}

TEST_F(ContentViewTest, speaksTheLanguageThatIsChosenNow) {
    show();
    preferences.values[Preference::appLanguage] = "zh-Hans";
    view->showAll();
    EXPECT_EQ(recordButton()->text().toStdString(), text(Key::startRecording));
    EXPECT_NE(find<ToggleSwitch>(QString::fromStdString(text(Key::systemAudio))), nullptr);
}

TEST(SymbolsTest, haveADrawingEach) {
    for (int i = 0; i <= static_cast<int>(Symbol::waveform); ++i) {
        const auto image = symbolPixmap(static_cast<Symbol>(i), Qt::red, 24, 2).toImage();
        ASSERT_EQ(image.size(), QSize(48, 48));
        int covered = 0;
        for (int pixel = 0; pixel < 48 * 48; ++pixel) {
            covered += qAlpha(image.pixel(pixel % 48, pixel / 48)) > 128 ? 1 : 0;
        }
        EXPECT_GT(covered, 100) << i;
    }
    EXPECT_FALSE(applicationIcon().pixmap(38, 38).isNull());
}

TEST_F(ContentViewTest, describesAFailureByItself) {
    showIn(Case::failed);
    EXPECT_TRUE(isSeen("Needs attention"));
    EXPECT_TRUE(isSeen("no such luck"));
}

} // namespace
} // namespace vantoro::testing
