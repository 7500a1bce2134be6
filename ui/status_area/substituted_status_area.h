// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <set>

#include <QtCore/QObject>

#include "ui/ports/status_area.h"

namespace vantoro {

/// A status area with a substitute, which shows the items while the first is known not to be
/// available, if it can. Both areas must live longer than it. Main thread.
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

    /// Not in place of one that may yet turn out to be there. And a desktop that has not answered
    /// the first had better not be asked by one that waits for answers.
    bool substitutes() const { return first_.isAvailable() == false; }

    void availabilityDidChange();

    StatusArea& first_;
    StatusArea& substitute_;
    std::set<Item*> items_;
    std::function<void()> changed_;
};

} // namespace vantoro
