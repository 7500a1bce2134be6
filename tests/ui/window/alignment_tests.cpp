// SPDX-License-Identifier: GPL-3.0-or-later

#include <QtWidgets/QComboBox>

#include "tests/ui/window/main_window_fixture.h"
#include "ui/style/decorations.h"

namespace vantoro::testing {
namespace {

class AlignmentTest : public MainWindowTest {
protected:
    int leftOf(const QWidget& part) const { return placeIn(*window, part).left(); }

    int rightOf(const QWidget& part) const { return placeIn(*window, part).right(); }
};

TEST_F(AlignmentTest, lineUpTheTextsAndTheEndsOfAllRows) {
    devices.mayCapture = false;
    showIn(Case::completed);
    const auto textOf = [](const QWidget& row) { return visible<QLabel>(row).at(0); };
    const auto middleOf = [this](const QWidget& row) {
        return placeIn(*window, *visible<SymbolLabel>(row).at(0)).center().x();
    };
    std::vector<QWidget*> rows;
    const auto add = [&rows](const auto& found) {
        rows.insert(rows.end(), found.begin(), found.end());
    };
    add(visible<SourceRow>(*window));
    add(visible<PermissionRow>(*window));
    add(visible<VolumeRow>(*window));
    add(visible<FolderRow>(*window));
    ASSERT_EQ(rows.size(), 7U);
    for (const auto* const row : rows) {
        EXPECT_EQ(leftOf(*textOf(*row)), leftOf(*textOf(*rows.front())));
        EXPECT_NEAR(middleOf(*row), middleOf(*rows.front()), 1);
    }
    EXPECT_EQ(leftOf(*textOf(*visible<InputRow>(*window).at(0))), leftOf(*textOf(*rows.front())));

    constexpr int ring = 3;
    const int end = rightOf(*visible<ToggleSwitch>(*window).at(0)) - ring;
    EXPECT_EQ(rightOf(*visible<ToggleSwitch>(*window).at(1)) - ring, end);
    EXPECT_EQ(rightOf(*visible<QComboBox>(*window).at(0)), end);
    EXPECT_EQ(rightOf(*named<QPushButton>(*window, "Settings: Screen & System Audio")), end);
    EXPECT_EQ(rightOf(*named<QLabel>(*window, "Microphone: Allowed")), end);
    for (const auto* const row : visible<VolumeRow>(*window)) {
        EXPECT_EQ(rightOf(*visible<QLabel>(*row).at(1)), end);
    }
    EXPECT_EQ(rightOf(*named<SymbolButton>(*window, "Open recording folder")), end);
    EXPECT_EQ(rightOf(*named<SymbolButton>(*window, "Show in Finder")), end);
}

TEST_F(AlignmentTest, endsTheHeaderWithTheSymbolOfItsButton) {
    show();
    auto& button = *named<SymbolButton>(*window, "Refresh audio devices and permissions");
    const int symbol = placeIn(*window, button).center().x() + button.iconSize().width() / 2;
    EXPECT_NEAR(symbol, window->rect().right() - 20, 1);
}

} // namespace
} // namespace vantoro::testing
