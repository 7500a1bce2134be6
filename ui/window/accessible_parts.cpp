// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/accessible_parts.h"

#include <QtWidgets/QAccessibleWidget>

#include "ui/meters/level_bar.h"
#include "ui/meters/level_meter_panel.h"
#include "ui/rows/volume_row.h"
#include "ui/style/percentage.h"
#include "ui/window/card.h"
#include "ui/window/status_badge.h"

namespace vantoro {

namespace {

class Badge final : public QAccessibleWidget {
public:
    explicit Badge(StatusBadge& badge) : QAccessibleWidget(&badge), badge_(badge) {}

    QAccessible::Role role() const override {
        return badge_.isBusy() ? QAccessible::ProgressBar : QAccessible::Graphic;
    }

    QAccessible::State state() const override {
        auto state = QAccessibleWidget::state();
        state.busy = badge_.isBusy();
        return state;
    }

private:
    StatusBadge& badge_;
};

/// A value read to users in percent, whatever the widget's unit.
template <class Widget>
class Hundredths : public QAccessibleWidget, QAccessibleValueInterface {
public:
    Hundredths(Widget& widget, QAccessible::Role role)
        : QAccessibleWidget(&widget, role), widget_(widget) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text which) const override {
        if (which == QAccessible::Description && !widget_.accessibleDescription().isEmpty()) {
            return widget_.accessibleDescription();
        }
        // Also as the description: not all screen readers ask for a value's text.
        return which == QAccessible::Value || which == QAccessible::Description
                   ? percentageText(inUnits(widget_.value()))
                   : QAccessibleWidget::text(which);
    }

    QStringList actionNames() const override {
        auto names = QAccessibleWidget::actionNames();
        if constexpr (isSet) {
            names << increaseAction() << decreaseAction();
        }
        return names;
    }

    void doAction(const QString& name) override {
        if constexpr (isSet) {
            if (name == increaseAction() || name == decreaseAction()) {
                widget_.triggerAction(name == increaseAction() ? QSlider::SliderSingleStepAdd
                                                               : QSlider::SliderSingleStepSub);
                return;
            }
        }
        QAccessibleWidget::doAction(name);
    }

    QVariant currentValue() const override { return percentage(inUnits(widget_.value())); }

    QVariant minimumValue() const override { return percentage(inUnits(widget_.minimum())); }

    QVariant maximumValue() const override { return percentage(inUnits(widget_.maximum())); }

    QVariant minimumStepSize() const override { return 1; }

    void setCurrentValue(const QVariant& value) override {
        if constexpr (isSet) {
            widget_.setValue(qRound(value.toDouble() / 100 * stepsPerUnit));
        }
    }

private:
    static constexpr bool isSet = std::is_same_v<Widget, QSlider>;
    static constexpr int stepsPerUnit = isSet ? VolumeRow::stepsPerUnit : 100;

    static double inUnits(int steps) { return static_cast<double>(steps) / stepsPerUnit; }

    Widget& widget_;
};

QAccessibleInterface* describe(const QString& /*className*/, QObject* object) {
    if (auto* const bar = qobject_cast<LevelBar*>(object)) {
        return new Hundredths<LevelBar>(*bar, QAccessible::ProgressBar);
    }
    if (auto* const slider = qobject_cast<QSlider*>(object);
        slider != nullptr && qobject_cast<VolumeRow*>(slider->parent()) != nullptr) {
        return new Hundredths<QSlider>(*slider, QAccessible::Slider);
    }
    if (auto* const badge = qobject_cast<StatusBadge*>(object)) {
        return new Badge(*badge);
    }
    if (qobject_cast<Card*>(object) != nullptr ||
        qobject_cast<LevelMeterPanel*>(object) != nullptr) {
        return new QAccessibleWidget(static_cast<QWidget*>(object), QAccessible::Grouping);
    }
    return nullptr; // the toolkit's default
}

} // namespace

void describeParts() {
    QAccessible::installFactory(describe); // installs it only once
}

} // namespace vantoro
