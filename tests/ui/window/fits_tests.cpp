// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <map>

#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>

#include "tests/ui/window/clipping.h"
#include "tests/ui/window/lights.h"
#include "tests/ui/window/passage.h"

// The window in the fonts that desktops have. These tests run at several scales, and save a picture
// of everything that they look at in `pictures`, for tools/window-pictures.

namespace vantoro::testing {
namespace {

const DesktopFont fonts[] = {
    {"dejavu-9", "DejaVu Sans", 9},      {"cantarell-11", "Cantarell", 11},
    {"noto-10", "Noto Sans CJK SC", 10}, {"noto-11", "Noto Sans CJK SC", 11},
    {"noto-15", "Noto Sans CJK SC", 15},
};

using Places = std::map<const QWidget*, QRect>;

/// Where each part of the window is. Only the origin of a text, since its length follows what it
/// says.
Places placesIn(const QWidget& window) {
    Places places;
    for (const auto* const part : visible<QWidget>(window)) {
        if (!part->isWindow()) {
            const bool isText = qobject_cast<const QLabel*>(part) != nullptr;
            places[part] =
                QRect(part->mapTo(&window, QPoint(0, 0)), isText ? QSize(0, 0) : part->size());
        }
    }
    return places;
}

class FitsTest : public Passage, public ::testing::WithParamInterface<DesktopFont> {
protected:
    void SetUp() override {
        Passage::SetUp();
        setFont(GetParam());
        std::filesystem::create_directories("pictures");
    }

    const QScrollBar& bar() const {
        return *visible<QScrollArea>(*window).at(0)->verticalScrollBar();
    }

    std::string movedSince(const Places& before) const {
        std::string moved;
        for (const auto& [part, place] : placesIn(*window)) {
            if (before.contains(part) && before.at(part) != place) {
                moved += describe(*part) + ", ";
            }
        }
        return moved;
    }

    void keepPicture(const std::string& name) const {
        const auto scale = qEnvironmentVariable("QT_SCALE_FACTOR", "1").toStdString();
        const auto file = "pictures/" + GetParam().name + "-" + name + "-" + scale + ".png";
        EXPECT_TRUE(window->grab().save(QString::fromStdString(file), nullptr, 80));
    }
};

TEST_P(FitsTest, showsAllOfEachStateWithoutScrollingAndMovesNothing) {
    for (const auto& light : {lights().at(0), lights().at(1)}) {
        QApplication::setPalette(light.palette);
        for (const std::string spoken : {"en", "zh-Hans"}) {
            openIn(spoken);
            settleEvents();
            const auto before = placesIn(*window);
            pass([&](const std::string& state) {
                const auto name = spoken + "-" + light.name + "-" + state;
                EXPECT_EQ(bar().maximum(), 0) << name;
                expectNothingClipped(*window, name);
                EXPECT_EQ(movedSince(before), "") << name;
                keepPicture(name);
            });
        }
    }
}

TEST_P(FitsTest, showsAllOfWhatIsMissing) {
    devices.list.clear();
    devices.mayCapture = false;
    microphone.current = AuthorizationStatus::notDetermined;
    for (const std::string spoken : {"en", "zh-Hans"}) {
        MainWindowTest::TearDown();
        preferences = preferencesIn(spoken);
        model = std::make_unique<RecordingViewModel>(std::make_unique<FakeRecorder>(recorder),
                                                     platform());
        show();
        scheduler.settle();
        settleEvents();
        EXPECT_EQ(bar().maximum(), 0) << spoken;
        expectNothingClipped(*window, spoken);
        keepPicture(spoken + "-light-missing");
    }
}

INSTANTIATE_TEST_SUITE_P(Fonts, FitsTest, ::testing::ValuesIn(fonts), [](const auto& font) {
    auto name = font.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

} // namespace
} // namespace vantoro::testing
