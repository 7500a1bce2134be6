// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <vector>

#include <QtWidgets/QLabel>
#include <QtWidgets/QWidget>

namespace vantoro::testing {

// Finds parts of a window as a user does: by name and visible text.

template <class Widget>
std::vector<Widget*> visible(const QWidget& root) {
    std::vector<Widget*> found;
    for (auto* const widget : root.findChildren<Widget*>()) {
        if (widget->isVisible()) {
            found.push_back(widget);
        }
    }
    return found;
}

/// The visible widget with this name; null if there is none.
template <class Widget>
Widget* named(const QWidget& root, const QString& name) {
    for (auto* const widget : visible<Widget>(root)) {
        if (widget->accessibleName() == name) {
            return widget;
        }
    }
    return nullptr;
}

/// A widget's geometry within an outer one.
inline QRect placeIn(const QWidget& outer, const QWidget& widget) {
    return {widget.mapTo(&outer, QPoint(0, 0)), widget.size()};
}

inline bool isSeen(const QWidget& root, const QString& text) {
    for (auto* const label : visible<QLabel>(root)) {
        if (label->text() == text) {
            return true;
        }
    }
    return false;
}

} // namespace vantoro::testing
