// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QPushButton>

namespace vantoro {

/// The one that everything is about: starts, or in red stops, a recording.
class RecordButton final : public QPushButton {
    Q_OBJECT

public:
    /// Around what is drawn as the button, for the ring that shows the focus.
    static constexpr int ringMargin = 3;

    explicit RecordButton(QWidget* parent = nullptr);

    void setStops(bool stops);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Colours {
        QColor ground;
        QColor ink;
    };

    Colours colours() const;

    bool stops_ = false;
};

} // namespace vantoro
