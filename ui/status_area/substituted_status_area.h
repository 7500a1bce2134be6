// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <set>

#include <QtCore/QObject>

#include "ui/ports/status_area.h"

namespace vantoro {

/// Shows items in the substitute while the first area is known to be unavailable. Both must outlive
/// this. Main thread.
class SubstitutedStatusArea final : public StatusArea {
public:
    SubstitutedStatusArea(StatusArea& first, StatusArea& substitute);
    SubstitutedStatusArea(const SubstitutedStatusArea&) = delete;
    SubstitutedStatusArea& operator=(const SubstitutedStatusArea&) = delete;
    ~SubstitutedStatusArea() override;

    std::unique_ptr<StatusItem> makeItem(StatusItemTraits traits) override;
    std::optional<bool> isAvailable() const override;
    void setAvailabilityChanged(std::function<void()> changed) override;

private:
    class Item;

    /// False while the first may still appear; also, a desktop that does not answer the first would
    /// block the substitute, which waits for answers.
    bool substitutes() const { return first_.isAvailable() == false; }

    void availabilityDidChange();

    StatusArea& first_;
    StatusArea& substitute_;
    std::set<Item*> items_;
    std::function<void()> changed_;
};

} // namespace vantoro
