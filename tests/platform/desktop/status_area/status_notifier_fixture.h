// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QtCore/QStringList>
#include <QtCore/QVariantMap>

#include <gtest/gtest.h>

#include "platform/desktop/bus/bus_connection.h"
#include "platform/desktop/status_area/status_notifier_area.h"
#include "tests/platform/desktop/bus/private_bus.h"

namespace vantoro::testing {

/// A watcher that records the registrations.
class TestWatcher {
public:
    explicit TestWatcher(const PrivateBus& bus, bool hasPanel = true);

    /// The names of the connections that registered an item.
    const QStringList& items() const { return *items_; }

    void setHasPanel(bool hasPanel);

private:
    std::shared_ptr<QStringList> items_ = std::make_shared<QStringList>();
    std::shared_ptr<std::atomic<bool>> hasPanel_;
    BusService service_;
};

/// A status area, and a panel that reads its items.
class StatusNotifierTest : public ::testing::Test {
public:
    StatusNotifierTest(const StatusNotifierTest&) = delete;
    StatusNotifierTest& operator=(const StatusNotifierTest&) = delete;

protected:
    PrivateBus bus;
    desktop::StatusNotifierArea area{bus.address().toStdString()};
    QStringList clicks;                                             ///< their tokens
    std::vector<std::pair<StatusAreaCommand, std::string>> choices; ///< in menus, with their tokens

    StatusNotifierTest();
    ~StatusNotifierTest() override;

    std::unique_ptr<StatusItem> makeItem(const std::string& identifier = "an-item",
                                         const std::string& toolTip = "tool tip");

    /// The item's answer.
    QDBusMessage call(const QString& item, const QString& interface, const QString& method,
                      const QVariantList& arguments = {},
                      const QString& path = "/StatusNotifierItem");
    QDBusMessage callItem(const QString& item, const QString& method,
                          const QVariantList& arguments = {});
    /// Does not wait for an answer.
    void postToItem(const QString& item, const QString& method, const QVariantList& arguments);
    QVariantMap propertiesOf(const QString& item);

    /// How often the panel received this signal, from any item.
    int heard(const std::string& signal) const;
    /// Waits until another signal may be sent.
    static void waitForPace();

    /// A different picture for each number.
    static StatusImage picture(int number);
    /// The item's picture as a panel receives it; comparable with the above.
    StatusImage pictureOf(const QString& item);

private:
    QDBusConnection panel_ = bus.connect("panel");
    std::map<std::string, int> heard_;
    desktop::BusConnection ears_{bus.address().toStdString()};
};

} // namespace vantoro::testing
