// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/style/symbols.h"

#include <cmath>

#include <QtGui/QIconEngine>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

/// Not automatic in a static library. Qt requires this outside all namespaces.
static void registerDrawings() {
    Q_INIT_RESOURCE(symbols);
}

namespace vantoro {

namespace {

const QString folder = [] {
    registerDrawings();
    return QStringLiteral(":/vantoro/symbols/");
}();

constexpr double disabledOpacity = 0.4;

QString fileOf(Symbol symbol) {
    static constexpr const char* names[] = {
        "checkmark", "checkmark-circle", "computer", "exclamation", "exclamation-circle",
        "folder",    "microphone",       "open",     "play",        "record-circle",
        "refresh",   "speaker",          "stop",     "waveform",
    };
    return folder + QLatin1String(names[static_cast<std::size_t>(symbol)]) + QStringLiteral(".svg");
}

/// Fills the drawing's shape with the colour.
QImage tinted(Symbol symbol, const QColor& colour, const QSize& pixels) {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QSvgRenderer renderer(fileOf(symbol));
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    renderer.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), colour);
    return image;
}

class SymbolEngine final : public QIconEngine {
public:
    SymbolEngine(Symbol symbol, const QColor& colour) : symbol_(symbol), colour_(colour) {}

    void paint(QPainter* painter, const QRect& area, QIcon::Mode mode,
               QIcon::State /*state*/) override {
        const double scale = painter->device()->devicePixelRatioF();
        const auto pixels = QSizeF(area.size()) * scale;
        painter->save();
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->drawImage(area, tinted(symbol_, colourIn(mode), pixels.toSize()));
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/) override {
        return QPixmap::fromImage(tinted(symbol_, colourIn(mode), size));
    }

    QIconEngine* clone() const override { return new SymbolEngine(symbol_, colour_); }

private:
    QColor colourIn(QIcon::Mode mode) const {
        auto colour = colour_;
        if (mode == QIcon::Disabled) {
            colour.setAlphaF(static_cast<float>(colour.alphaF() * disabledOpacity));
        }
        return colour;
    }

    Symbol symbol_;
    QColor colour_;
};

} // namespace

QPixmap symbolPixmap(Symbol symbol, const QColor& colour, int size, double scale) {
    const int pixels = static_cast<int>(std::ceil(size * scale));
    auto pixmap = QPixmap::fromImage(tinted(symbol, colour, QSize(pixels, pixels)));
    pixmap.setDevicePixelRatio(scale);
    return pixmap;
}

QIcon symbolIcon(Symbol symbol, const QColor& colour) {
    return QIcon(new SymbolEngine(symbol, colour));
}

QIcon applicationIcon() {
    return QIcon(folder + QStringLiteral("application.svg"));
}

} // namespace vantoro
