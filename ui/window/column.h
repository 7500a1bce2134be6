// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QScrollArea>
#include <QtWidgets/QVBoxLayout>

namespace vantoro {

/// Panels one above the other, which scroll if the window is too low for them. They stay in the
/// middle of a window that is wider than what is easy to read.
class Column final : public QScrollArea {
    Q_OBJECT

public:
    explicit Column(QWidget* parent = nullptr);

    void addPanel(QWidget* panel);

    /// Scrolls to a panel, if it is shown, after the next layout.
    void bringIntoView(QWidget* panel);

    /// The usual width, and the height at which all panels fit, even those that are hidden.
    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    int heightOfHiddenPanels() const;

    QVBoxLayout* panels_;
};

} // namespace vantoro
