// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/status_area/substituted_status_area.h"

#include <utility>

namespace vantoro {

class SubstitutedStatusArea::Item final : public StatusItem {
public:
    Item(SubstitutedStatusArea& area, StatusItemTraits traits)
        : area_(area), traits_(std::move(traits)), first_(area.first_.makeItem(traits_)) {
        area_.items_.insert(this);
        chooseArea();
    }

    Item(const Item&) = delete;
    Item& operator=(const Item&) = delete;

    ~Item() override { area_.items_.erase(this); }

    void setImage(const StatusImage& image, const std::string& description) override {
        image_ = image;
        description_ = description;
        first_->setImage(image, description);
        if (substitute_) {
            substitute_->setImage(image, description);
        }
    }

    void setToolTipDetail(const std::string& detail) override {
        toolTipDetail_ = detail;
        first_->setToolTipDetail(detail);
        if (substitute_) {
            substitute_->setToolTipDetail(detail);
        }
    }

    void setMenu(const StatusMenu& menu) override {
        menu_ = menu;
        first_->setMenu(menu);
        if (substitute_) {
            substitute_->setMenu(menu);
        }
    }

    void chooseArea() {
        if (!area_.substitutes()) {
            substitute_.reset();
        } else if (!substitute_) {
            substitute_ = area_.substitute_.makeItem(traits_);
            substitute_->setImage(image_, description_);
            substitute_->setToolTipDetail(toolTipDetail_);
            substitute_->setMenu(menu_);
        }
    }

private:
    SubstitutedStatusArea& area_;
    StatusItemTraits traits_;
    StatusImage image_;
    std::string description_;
    std::string toolTipDetail_;
    StatusMenu menu_;
    std::unique_ptr<StatusItem> first_; // kept, in case the area comes back
    std::unique_ptr<StatusItem> substitute_;
};

SubstitutedStatusArea::SubstitutedStatusArea(StatusArea& first, StatusArea& substitute)
    : first_(first), substitute_(substitute) {
    first_.setAvailabilityChanged([this] { availabilityDidChange(); });
    substitute_.setAvailabilityChanged([this] { availabilityDidChange(); });
}

SubstitutedStatusArea::~SubstitutedStatusArea() {
    first_.setAvailabilityChanged({});
    substitute_.setAvailabilityChanged({});
}

std::unique_ptr<StatusItem> SubstitutedStatusArea::makeItem(StatusItemTraits traits) {
    return std::make_unique<Item>(*this, std::move(traits));
}

std::optional<bool> SubstitutedStatusArea::isAvailable() const {
    return substitutes() ? substitute_.isAvailable() : first_.isAvailable();
}

void SubstitutedStatusArea::setAvailabilityChanged(std::function<void()> changed) {
    changed_ = std::move(changed);
}

void SubstitutedStatusArea::availabilityDidChange() {
    for (auto* const item : items_) {
        item->chooseArea();
    }
    if (changed_) {
        const auto changed = changed_;
        changed();
    }
}

} // namespace vantoro
