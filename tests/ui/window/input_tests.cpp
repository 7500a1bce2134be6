// SPDX-License-Identifier: GPL-3.0-or-later

#include <QtGui/QAccessible>
#include <QtWidgets/QComboBox>

#include "tests/ui/window/main_window_fixture.h"

namespace vantoro::testing {
namespace {

class InputTest : public MainWindowTest {
protected:
    DevicePicker& picker() const { return *visible<DevicePicker>(*window).at(0); }
};

TEST_F(InputTest, saysThatThereIsNoMicrophoneOnceItKnows) {
    devices.list.clear();
    model =
        std::make_unique<RecordingViewModel>(std::make_unique<FakeRecorder>(recorder), platform());
    show();
    EXPECT_EQ(picker().placeholderText(), "");
    scheduler.settle();
    EXPECT_EQ(picker().placeholderText(), "No microphone found");
    language->setLanguage(AppLanguage::chinese);
    EXPECT_EQ(picker().placeholderText(), "未找到麦克风");
    devices.list = {{"headset", "Headset"}};
    refresh();
    EXPECT_EQ(picker().placeholderText(), "");
}

TEST_F(InputTest, endsALongMicrophonesNameInAnEllipsis) {
    const std::string name = "A microphone with a name that is too long for the picker, " +
                             std::string(80, 'x') + " and on, and on";
    devices.list = {{"built-in", name}};
    show();
    EXPECT_EQ(picker().currentText().toStdString(), name);
    EXPECT_EQ(picker().toolTip().toStdString(), name);
    EXPECT_EQ(picker().itemData(0, Qt::ToolTipRole).toString().toStdString(), name);
    EXPECT_EQ(
        QAccessible::queryAccessibleInterface(&picker())->text(QAccessible::Value).toStdString(),
        name);
    const auto drawn = picker().grab().toImage();
    const auto drawnFor = [this](const QString& shown) {
        devices.list = {{"built-in", shown.toStdString()}};
        refresh();
        return picker().grab().toImage();
    };
    bool isElided = false;
    for (int room = picker().width() / 2; room < picker().width(); ++room) {
        const auto elided =
            picker().fontMetrics().elidedText(QString::fromStdString(name), Qt::ElideRight, room);
        isElided = isElided || drawnFor(elided) == drawn;
    }
    EXPECT_TRUE(isElided);
}

} // namespace
} // namespace vantoro::testing
