// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QStyle>
#include <QtWidgets/QStyleOptionComboBox>

#include "tests/ui/style/palettes.h"
#include "tests/ui/window/main_window_fixture.h"

// The limits are those of the Web Content Accessibility Guidelines, level AA.

namespace vantoro::testing {
namespace {

constexpr double ofText = 4.5;
constexpr double ofSymbols = 3;
constexpr int tall = 800; // needs no scrolling

/// The window's picture, so fine that even thin strokes have their full colour.
class FinePicture {
public:
    explicit FinePicture(QWidget& window)
        : window_(window), image_(window.size() * scale, QImage::Format_RGB32) {
        image_.setDevicePixelRatio(scale);
        window.render(&image_);
    }

    /// How far the most distinct colour in a part of a widget stands out from the usual one.
    double contrastIn(const QWidget& widget, const QRect& part) const {
        const QRect place(widget.mapTo(&window_, part.topLeft()) * scale, part.size() * scale);
        std::unordered_map<QRgb, int> counts;
        for (int y = place.top(); y <= place.bottom(); ++y) {
            for (int x = place.left(); x <= place.right(); ++x) {
                ++counts[image_.pixel(x, y)];
            }
        }
        const auto ground =
            std::ranges::max_element(counts, {}, [](const auto& one) { return one.second; })->first;
        double most = 1;
        for (const auto& [colour, count] : counts) {
            most = std::max(most, contrast(QColor(ground), QColor(colour)));
        }
        return most;
    }

private:
    static constexpr int scale = 3;

    QWidget& window_;
    QImage image_;
};

class ContrastTest : public MainWindowTest {
protected:
    void TearDown() override {
        end();
        QApplication::setPalette(QPalette());
    }

    void end() {
        MainWindowTest::TearDown();
        model.reset();
    }

    /// All texts of the window with their contrast.
    std::vector<std::pair<std::string, double>> texts() const {
        std::vector<std::pair<std::string, double>> found;
        const FinePicture picture(*window);
        for (auto* const label : visible<QLabel>(*window)) {
            if (!label->text().isEmpty()) {
                found.emplace_back(label->text().toStdString(),
                                   picture.contrastIn(*label, label->rect()));
            }
        }
        for (auto* const button : visible<QPushButton>(*window)) {
            found.emplace_back(button->text().toStdString(),
                               picture.contrastIn(*button, inside(*button)));
        }
        for (auto* const picker : visible<QComboBox>(*window)) {
            found.emplace_back(picker->currentText().toStdString(),
                               picture.contrastIn(*picker, textIn(*picker)));
        }
        return found;
    }

    void expectReadable(const std::string& where) const {
        const auto all = texts();
        EXPECT_GT(all.size(), 12U);
        for (const auto& [text, seen] : all) {
            EXPECT_GE(seen, ofText) << where << ": " << text;
        }
    }

private:
    static QRect inside(const QWidget& button) { return button.rect().adjusted(9, 6, -9, -6); }

    static QRect textIn(const QComboBox& picker) {
        QStyleOptionComboBox option;
        option.initFrom(&picker);
        return picker.style()
            ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &picker)
            .adjusted(2, 2, -2, -2);
    }
};

TEST_F(ContrastTest, everyTextIsReadableInEveryStateAndPalette) {
    for (const auto& [name, palette] : desktopPalettes()) {
        QApplication::setPalette(palette);
        for (const auto state :
             {Case::idle, Case::recording, Case::processing, Case::completed, Case::failed}) {
            showIn(state);
            model->dismissMessage(); // in a window of its own
            window->resize(window->minimumWidth(), tall);
            settleEvents();
            expectReadable(name + ", " + std::to_string(static_cast<int>(state)));
            end();
        }
    }
}

TEST_F(ContrastTest, everyTextIsReadableWithoutPermissions) {
    devices.mayCapture = false;
    microphone.current = AuthorizationStatus::denied;
    for (const auto& [name, palette] : desktopPalettes()) {
        QApplication::setPalette(palette);
        showIn(Case::idle);
        expectReadable(name);
        end();
    }
}

TEST_F(ContrastTest, everyTextIsReadableWhileAnotherWindowIsActive) {
    for (const auto& [name, palette] : desktopPalettes()) {
        QApplication::setPalette(palette);
        showIn(Case::recording);
        QWidget another;
        another.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&another, patience));
        ASSERT_FALSE(window->isActiveWindow());
        expectReadable(name);
        end();
    }
}

TEST_F(ContrastTest, aVolumeThatCannotBeMovedIsDimmedOnlyOnce) {
    for (const auto& [name, palette] : desktopPalettes()) {
        QApplication::setPalette(palette);
        show();
        model->setCaptureSystemAudio(false);
        const FinePicture picture(*window);
        for (auto* const label : visible<QLabel>(*visible<VolumeRow>(*window).at(0))) {
            EXPECT_GE(picture.contrastIn(*label, label->rect()), ofSymbols)
                << name << ": " << label->text().toStdString();
        }
        end();
    }
}

TEST(PaletteContrastTest, tonesStandOutFromEveryGround) {
    for (const auto& [name, palette] : desktopPalettes()) {
        const auto saved = tintOf(toneColour(Tone::saved, palette), palette);
        for (const auto tone :
             {Tone::accent, Tone::recording, Tone::saved, Tone::attention, Tone::systemAudio,
              Tone::microphone, Tone::secondary, Tone::primary, Tone::strongest}) {
            const auto colour = toneColour(tone, palette);
            const bool isText = tone >= Tone::secondary || tone == Tone::attention;
            for (const auto& ground :
                 {palette.color(QPalette::Window), cardColour(palette), tintOf(colour, palette)}) {
                EXPECT_GE(contrast(colour, ground), isText ? ofText : ofSymbols)
                    << name << " " << static_cast<int>(tone);
            }
            if (tone >= Tone::secondary) {
                EXPECT_GE(contrast(colour, saved), ofText) << name;
            }
        }
    }
}

TEST(PaletteContrastTest, buttonsStandOutAndTheirTextsAreReadable) {
    for (const auto& [name, palette] : desktopPalettes()) {
        for (const auto tone : {Tone::accent, Tone::recording}) {
            const auto [ground, ink] = buttonColours(tone, palette);
            EXPECT_GE(contrast(ground, palette.color(QPalette::Window)), ofSymbols) << name;
            EXPECT_GE(contrast(ground, ink), ofText) << name;
        }
        const auto [ground, ink] = disabledButtonColours(palette);
        EXPECT_GE(contrast(ground, ink), ofText) << name;
    }
}

TEST(PaletteContrastTest, switchesStandOutAndTheirKnobsFromThem) {
    for (const auto& [name, palette] : desktopPalettes()) {
        for (const auto& track : {offColour(palette), toneColour(Tone::accent, palette)}) {
            EXPECT_GE(contrast(track, cardColour(palette)), ofSymbols) << name;
            EXPECT_GE(contrast(track, symbolOn(track)), ofSymbols) << name;
        }
    }
}

TEST_F(ContrastTest, theRecordButtonStaysReadableUnderThePointerAndPressed) {
    for (const auto& [name, palette] : desktopPalettes()) {
        QApplication::setPalette(palette);
        show();
        auto* const button = visible<RecordButton>(*window).at(0);
        button->setAttribute(Qt::WA_UnderMouse);
        EXPECT_GE(FinePicture(*window).contrastIn(*button, button->rect().adjusted(9, 6, -9, -6)),
                  ofText)
            << name;
        button->setDown(true);
        EXPECT_GE(FinePicture(*window).contrastIn(*button, button->rect().adjusted(9, 6, -9, -6)),
                  ofText)
            << name;
        end();
    }
}

TEST_F(ContrastTest, levelsStandOutFromWhereTheyCouldBe) {
    for (const auto& [name, palette] : desktopPalettes()) {
        QApplication::setPalette(palette);
        showIn(Case::recording);
        reportLevel(AudioLevelSource::systemAudio, 0.5F);
        reportLevel(AudioLevelSource::microphone, 0.5F);
        for (auto* const bar : visible<LevelBar>(*window)) {
            const auto picture = bar->grab().toImage();
            EXPECT_GE(contrast(picture.pixelColor(20, 3), picture.pixelColor(60, 3)), ofSymbols)
                << name << " " << bar->accessibleName().toStdString();
        }
        end();
    }
}

} // namespace
} // namespace vantoro::testing
