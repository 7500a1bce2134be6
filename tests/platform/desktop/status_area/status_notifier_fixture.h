// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>

#include <QtCore/QStringList>
#include <QtCore/QVariantMap>

#include <gtest/gtest.h>

#include "platform/desktop/bus/bus_connection.h"
#include "platform/desktop/status_area/status_notifier_area.h"
#include "tests/platform/desktop/bus/private_bus.h"

namespace vantoro::testing {

/// A watcher of status notifier items, which writes down who registers.
class TestWatcher {
public:
    explicit TestWatcher(const PrivateBus& bus, bool hasPanel = true);

    /// As they were registered: by a name on the bus or a path.
    const QStringList& items() const { return *items_; }

    void setHasPanel(bool hasPanel);

private:
    std::shared_ptr<QStringList> items_ = std::make_shared<QStringList>();
    std::shared_ptr<std::atomic<bool>> hasPanel_;
    BusService service_;
};

/// A status area, and a panel that looks at what is in it.
class StatusNotifierTest : public ::testing::Test {
public:
    StatusNotifierTest(const StatusNotifierTest&) = delete;
    StatusNotifierTest& operator=(const StatusNotifierTest&) = delete;

protected:
    PrivateBus bus;
    desktop::StatusNotifierArea area{bus.address().toStdString()};
    QStringList clicks; ///< their tokens

    StatusNotifierTest();
    ~StatusNotifierTest() override;

    std::unique_ptr<StatusItem> makeItem(const std::string& identifier = "an-item",
                                         const std::string& toolTip = "tool tip");

    /// What the item answers.
    QDBusMessage call(const QString& item, const QString& interface, const QString& method,
                      const QVariantList& arguments = {});
    QDBusMessage callItem(const QString& item, const QString& method,
                          const QVariantList& arguments = {});
    /// Without waiting for an answer.
    void postToItem(const QString& item, const QString& method, const QVariantList& arguments);
    QVariantMap propertiesOf(const QString& item);

    /// How often the panel heard this signal, from whichever item.
    int heard(const std::string& signal) const;
    /// For the panel to be told of anything that there is to tell.
    static void letThePacePass();

    /// A picture of its own for each number.
    static StatusImage picture(int number);
    /// What a panel gets of the item's picture: as above, when it is the same.
    StatusImage pictureOf(const QString& item);

private:
    QDBusConnection panel_ = bus.connect("panel");
    std::map<std::string, int> heard_;
    desktop::BusConnection ears_{bus.address().toStdString()};
};

} // namespace vantoro::testing
