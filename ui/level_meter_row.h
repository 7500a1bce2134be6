#pragma once

#include <QtWidgets/QLabel>
#include <QtWidgets/QWidget>

#include "ui/level_bar.h"

namespace vantoro {

/// A source's name, its level as a bar, and in hundredths.
class LevelMeterRow final : public QWidget {
    Q_OBJECT

public:
    explicit LevelMeterRow(Tone tone, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    /// Of its column: wider than usual only for text that the user has made larger.
    int titleWidth() const;
    void setTitleWidth(int width);
    /// 0 to 1.
    void setLevel(double level);

private:
    QLabel* title_;
    LevelBar* bar_;
    QLabel* percentage_;
};

} // namespace vantoro
