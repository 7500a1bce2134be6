// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/status_area/tray_icon_area.h"

#include <utility>

#include <QtGui/QIcon>
#include <QtGui/QPixmap>
#include <QtWidgets/QSystemTrayIcon>

namespace vantoro {

namespace {

QIcon iconOf(const StatusImage& image) {
    QIcon icon;
    for (const auto& size : image) {
        icon.addPixmap(QPixmap::fromImage(size));
    }
    return icon;
}

class TrayIcon final : public StatusItem {
public:
    explicit TrayIcon(StatusItemTraits traits) : clicked_(std::move(traits.clicked)) {
        icon_.setToolTip(QString::fromStdString(traits.toolTip));
        // Queued: a click may destroy the icon.
        QObject::connect(
            &icon_, &QSystemTrayIcon::activated, &icon_, [this] { tellOfClick(); },
            Qt::QueuedConnection);
    }

    void setImage(const StatusImage& image, const std::string& /*description*/) override {
        if (image != image_) {
            image_ = image;
            icon_.setIcon(iconOf(image));
            icon_.setVisible(!image.isEmpty());
        }
    }

private:
    void tellOfClick() {
        const auto clicked = clicked_;
        clicked({});
    }

    std::function<void(const std::string&)> clicked_;
    StatusImage image_;
    QSystemTrayIcon icon_;
};

} // namespace

std::unique_ptr<StatusItem> TrayIconArea::makeItem(StatusItemTraits traits) {
    return std::make_unique<TrayIcon>(std::move(traits));
}

std::optional<bool> TrayIconArea::isAvailable() const {
    return QSystemTrayIcon::isSystemTrayAvailable();
}

} // namespace vantoro
