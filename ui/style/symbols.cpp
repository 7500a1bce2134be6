// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/style/symbols.h"

#include <cmath>
#include <optional>
#include <utility>

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

/// A drawing in its own colours, or its shape filled with `colour`.
QImage drawn(const QString& file, const std::optional<QColor>& colour, const QSize& pixels) {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QSvgRenderer renderer(file);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    renderer.render(&painter);
    if (colour) {
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(image.rect(), *colour);
    }
    return image;
}

/// Does without the toolkit's module for such files, which not every system installs.
class DrawingEngine final : public QIconEngine {
public:
    DrawingEngine(QString file, std::optional<QColor> colour)
        : file_(std::move(file)), colour_(std::move(colour)) {}

    void paint(QPainter* painter, const QRect& area, QIcon::Mode mode,
               QIcon::State /*state*/) override {
        const double scale = painter->device()->devicePixelRatioF();
        const auto pixels = QSizeF(area.size()) * scale;
        painter->save();
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->drawImage(area, drawn(file_, colourIn(mode), pixels.toSize()));
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/) override {
        return QPixmap::fromImage(drawn(file_, colourIn(mode), size));
    }

    QIconEngine* clone() const override { return new DrawingEngine(file_, colour_); }

private:
    std::optional<QColor> colourIn(QIcon::Mode mode) const {
        auto colour = colour_;
        if (colour && mode == QIcon::Disabled) {
            colour->setAlphaF(static_cast<float>(colour->alphaF() * disabledOpacity));
        }
        return colour;
    }

    QString file_;
    std::optional<QColor> colour_;
};

} // namespace

QPixmap symbolPixmap(Symbol symbol, const QColor& colour, int size, double scale) {
    const int pixels = static_cast<int>(std::ceil(size * scale));
    auto pixmap = QPixmap::fromImage(drawn(fileOf(symbol), colour, QSize(pixels, pixels)));
    pixmap.setDevicePixelRatio(scale);
    return pixmap;
}

QIcon symbolIcon(Symbol symbol, const QColor& colour) {
    return QIcon(new DrawingEngine(fileOf(symbol), colour));
}

QIcon applicationIcon() {
    return QIcon(new DrawingEngine(folder + QStringLiteral("application.svg"), std::nullopt));
}

} // namespace vantoro
