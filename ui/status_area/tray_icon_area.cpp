// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/status_area/tray_icon_area.h"

#include <QtGui/QIcon>
#include <QtGui/QPixmap>
#include <QtWidgets/QMenu>
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
    explicit TrayIcon(const StatusItemTraits& traits)
        : clicked_(traits.clicked),
          chosen_(traits.chosen),
          toolTip_(QString::fromStdString(traits.toolTip)) {
        icon_.setToolTip(toolTip_);
        icon_.setContextMenu(&menu_);
        // Queued: a click may destroy the icon.
        QObject::connect(
            &icon_, &QSystemTrayIcon::activated, &icon_,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason != QSystemTrayIcon::Context) { // which opens the menu
                    tellOfClick();
                }
            },
            Qt::QueuedConnection);
    }

    void setImage(const StatusImage& image, const std::string& /*description*/) override {
        if (image != image_) {
            image_ = image;
            icon_.setIcon(iconOf(image));
            icon_.setVisible(!image.isEmpty());
        }
    }

    void setToolTipDetail(const std::string& detail) override {
        const auto below = QString::fromStdString(detail);
        icon_.setToolTip(below.isEmpty() ? toolTip_ : toolTip_ + '\n' + below);
    }

    void setMenu(const StatusMenu& menu) override {
        if (menu == rows_) {
            return;
        }
        rows_ = menu;
        menu_.clear();
        for (const auto& row : rows_) {
            if (row.startsGroup) {
                menu_.addSeparator();
            }
            auto* const action = menu_.addAction(QString::fromStdString(row.label));
            action->setEnabled(row.isEnabled);
            // Queued: the command may change the menu, or destroy the icon.
            QObject::connect(
                action, &QAction::triggered, &icon_,
                [this, command = row.command] { tellOfChoice(command); }, Qt::QueuedConnection);
        }
    }

private:
    void tellOfChoice(StatusAreaCommand command) {
        const auto chosen = chosen_;
        chosen(command, {});
    }

    void tellOfClick() {
        const auto clicked = clicked_;
        clicked({});
    }

    std::function<void(const std::string&)> clicked_;
    std::function<void(StatusAreaCommand, const std::string&)> chosen_;
    QString toolTip_;
    StatusImage image_;
    StatusMenu rows_;
    QMenu menu_;
    QSystemTrayIcon icon_;
};

} // namespace

std::unique_ptr<StatusItem> TrayIconArea::makeItem(StatusItemTraits traits) {
    return std::make_unique<TrayIcon>(traits);
}

std::optional<bool> TrayIconArea::isAvailable() const {
    return QSystemTrayIcon::isSystemTrayAvailable();
}

} // namespace vantoro
