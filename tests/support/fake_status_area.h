// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ui/ports/status_area.h"

namespace vantoro::testing {

/// Records its items.
class FakeStatusArea final : public StatusArea {
public:
    struct Item final : StatusItem {
        Item(FakeStatusArea& madeIn, StatusItemTraits is) : area(madeIn), traits(std::move(is)) {
            area.items.push_back(this);
        }

        Item(const Item&) = delete;
        Item& operator=(const Item&) = delete;

        ~Item() override { std::erase(area.items, this); }

        void setImage(const StatusImage& newImage, const std::string& newDescription) override {
            image = newImage;
            description = newDescription;
        }

        void setToolTipDetail(const std::string& detail) override { toolTipDetail = detail; }

        void setMenu(const StatusMenu& newMenu) override { menu = newMenu; }

        FakeStatusArea& area;
        StatusItemTraits traits;
        StatusImage image;
        std::string description;
        std::string toolTipDetail;
        StatusMenu menu;
    };

    std::unique_ptr<StatusItem> makeItem(StatusItemTraits traits) override {
        return std::make_unique<Item>(*this, std::move(traits));
    }

    std::optional<bool> isAvailable() const override { return available; }

    void setAvailabilityChanged(std::function<void()> function) override {
        changed = std::move(function);
    }

    void setAvailable(bool isAvailable) {
        available = isAvailable;
        changed();
    }

    std::vector<Item*> items;
    std::optional<bool> available;
    std::function<void()> changed;
};

} // namespace vantoro::testing
