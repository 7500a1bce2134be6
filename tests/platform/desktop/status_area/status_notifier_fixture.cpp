// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/platform/desktop/status_area/status_notifier_fixture.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>
#include <QtCore/QtEndian>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusVariant>

#include "platform/desktop/status_area/status_notifier_item.h"
#include "tests/control/event_loop.h"

namespace vantoro::testing {

namespace {

const QString itemInterface = "org.kde.StatusNotifierItem";

} // namespace

TestWatcher::TestWatcher(const PrivateBus& bus, bool hasPanel)
    : hasPanel_(std::make_shared<std::atomic<bool>>(hasPanel)),
      service_(bus, desktop::statusNotifierWatcher,
               [items = items_, panel = hasPanel_](const QDBusMessage& question) {
                   if (question.member() == "Get") {
                       return question.createReply(
                           QVariant::fromValue(QDBusVariant(panel->load())));
                   }
                   const auto name = question.arguments().value(0).toString();
                   // The path stands for an object of the caller.
                   const auto item = name == "/StatusNotifierItem" ? question.service() : name;
                   QMetaObject::invokeMethod(
                       QCoreApplication::instance(), [items, item] { items->push_back(item); },
                       Qt::QueuedConnection);
                   return question.createReply();
               }) {}

void TestWatcher::setHasPanel(bool hasPanel) {
    *hasPanel_ = hasPanel;
    QDBusConnection(desktop::statusNotifierWatcher)
        .send(QDBusMessage::createSignal("/StatusNotifierWatcher", desktop::statusNotifierWatcher,
                                         hasPanel ? "StatusNotifierHostRegistered"
                                                  : "StatusNotifierHostUnregistered"));
}

StatusNotifierTest::StatusNotifierTest() {
    for (const std::string signal :
         {"NewIcon", "NewTitle", "NewToolTip", "NewStatus", "LayoutUpdated"}) {
        ears_.listen("type='signal',member='" + signal + "'",
                     [this, signal](desktop::BusMessage&) { ++heard_[signal]; });
    }
    bool listening = false; // calls are answered in order
    ears_.call({.service = "org.freedesktop.DBus",
                .path = "/org/freedesktop/DBus",
                .interface = "org.freedesktop.DBus",
                .member = "GetId"},
               {}, [&](desktop::BusMessage&) { listening = true; });
    EXPECT_TRUE(EventLoop::runUntil([&] { return listening; }));
}

StatusNotifierTest::~StatusNotifierTest() {
    QDBusConnection::disconnectFromBus("panel");
}

std::unique_ptr<StatusItem> StatusNotifierTest::makeItem(const std::string& identifier,
                                                         const std::string& toolTip) {
    return area.makeItem(
        {.identifier = identifier,
         .toolTip = toolTip,
         .clicked =
             [this](const std::string& token) { clicks.push_back(QString::fromStdString(token)); },
         .chosen = [this](StatusAreaCommand command,
                          const std::string& token) { choices.emplace_back(command, token); }});
}

QDBusMessage StatusNotifierTest::call(const QString& item, const QString& interface,
                                      const QString& method, const QVariantList& arguments,
                                      const QString& path) {
    auto question = QDBusMessage::createMethodCall(item, path, interface, method);
    question.setArguments(arguments);
    // The item answers on this thread, so do not block it.
    const QDBusPendingCallWatcher watcher(panel_.asyncCall(question));
    EXPECT_TRUE(EventLoop::runUntil([&] { return watcher.isFinished(); }));
    return watcher.reply();
}

QDBusMessage StatusNotifierTest::callItem(const QString& item, const QString& method,
                                          const QVariantList& arguments) {
    return call(item, itemInterface, method, arguments);
}

void StatusNotifierTest::postToItem(const QString& item, const QString& method,
                                    const QVariantList& arguments) {
    auto message =
        QDBusMessage::createMethodCall(item, "/StatusNotifierItem", itemInterface, method);
    message.setArguments(arguments);
    EXPECT_TRUE(panel_.send(message));
}

QVariantMap StatusNotifierTest::propertiesOf(const QString& item) {
    const auto reply = call(item, "org.freedesktop.DBus.Properties", "GetAll", {itemInterface});
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    return qdbus_cast<QVariantMap>(reply.arguments().value(0));
}

int StatusNotifierTest::heard(const std::string& signal) const {
    const auto found = heard_.find(signal);
    return found == heard_.end() ? 0 : found->second;
}

void StatusNotifierTest::waitForPace() {
    bool passed = false;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, [&] { passed = true; });
    timer.start(2 * desktop::StatusNotifierItem::signalDistance);
    EXPECT_TRUE(EventLoop::runUntil([&] { return passed; }));
}

StatusImage StatusNotifierTest::picture(int number) {
    QImage small(2, 1, QImage::Format_ARGB32);
    small.setPixel(0, 0, 0x80112233);
    small.setPixel(1, 0, static_cast<QRgb>(number));
    QImage large(3, 2, QImage::Format_ARGB32);
    large.fill(static_cast<QRgb>(0xff000000 + static_cast<QRgb>(number)));
    return {small, large};
}

StatusImage StatusNotifierTest::pictureOf(const QString& item) {
    const auto property = propertiesOf(item)["IconPixmap"];
    const auto pixmaps = property.value<QDBusArgument>();
    EXPECT_EQ(pixmaps.currentSignature(), "a(iiay)");
    StatusImage image;
    pixmaps.beginArray();
    while (!pixmaps.atEnd()) {
        int width = 0;
        int height = 0;
        QByteArray bytes;
        pixmaps.beginStructure();
        pixmaps >> width >> height >> bytes;
        pixmaps.endStructure();
        QImage size(width, height, QImage::Format_ARGB32);
        EXPECT_EQ(bytes.size(), size.sizeInBytes());
        for (int i = 0; i < bytes.size() / 4; ++i) {
            size.setPixel(i % width, i / width,
                          qFromBigEndian<QRgb>(bytes.constData() + std::ptrdiff_t{4} * i));
        }
        image.push_back(size);
    }
    pixmaps.endArray();
    return image;
}

} // namespace vantoro::testing
