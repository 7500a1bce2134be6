// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/appearance/dark_preference.h"

#include <atomic>
#include <memory>
#include <optional>

#include <QtCore/QElapsedTimer>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusVariant>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/platform/desktop/bus/private_bus.h"
#include "tests/platform/desktop/bus/silent_bus.h"

namespace vantoro::testing {
namespace {

const QString portalName = "org.freedesktop.portal.Desktop";
const QString appearance = "org.freedesktop.appearance";
const QString colourScheme = "color-scheme";

constexpr unsigned noPreference = 0;
constexpr unsigned dark = 1;
constexpr unsigned light = 2;

QVariant variant(const QVariant& value) {
    return QVariant::fromValue(QDBusVariant(value));
}

/// A settings portal of the newer kind, or of the older one, which wraps its answers once more.
class TestPortal {
public:
    enum class Kind { newer, older };

    TestPortal(const PrivateBus& bus, unsigned preference, Kind kind = Kind::newer)
        : service_(bus, portalName, [=](const QDBusMessage& question) {
              const bool asksForIt = question.path() == "/org/freedesktop/portal/desktop" &&
                                     question.interface() == "org.freedesktop.portal.Settings" &&
                                     question.arguments() == QVariantList{appearance, colourScheme};
              const auto member = kind == Kind::newer ? "ReadOne" : "Read";
              if (!asksForIt || question.member() != member) {
                  return question.createErrorReply(QDBusError::UnknownMethod, "");
              }
              const auto value = variant(preference);
              return question.createReply(kind == Kind::newer ? value : variant(value));
          }) {}

    static void tell(unsigned preference, const QString& space = appearance,
                     const QString& key = colourScheme, const QString& connection = portalName) {
        auto signal = QDBusMessage::createSignal(
            "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings", "SettingChanged");
        signal << space << key << variant(preference);
        ASSERT_TRUE(QDBusConnection(connection).send(signal));
    }

private:
    BusService service_;
};

class DarkPreferenceTest : public ::testing::Test {
protected:
    PrivateBus bus;
    std::optional<TestPortal> portal;
    std::vector<bool> changes;
    std::unique_ptr<desktop::DarkPreference> preference;

    void watch(const std::string& address) {
        preference = std::make_unique<desktop::DarkPreference>(
            address, [this](bool isDark) { changes.push_back(isDark); });
    }

    void watch() { watch(bus.address().toStdString()); }

    /// Also looks at what comes without an event.
    static bool eventually(const std::function<bool()>& isTrue) {
        QTimer looks;
        looks.start(std::chrono::milliseconds(10));
        return EventLoop::runUntil(isTrue);
    }

    /// Whether these are all the changes until now.
    bool changesAre(const std::vector<bool>& expected) {
        return EventLoop::runUntil([&] { return changes.size() >= expected.size(); }) &&
               changes == expected;
    }
};

TEST_F(DarkPreferenceTest, isReadFromThePortal) {
    portal.emplace(bus, dark);
    watch();
    EXPECT_TRUE(changesAre({true}));
}

TEST_F(DarkPreferenceTest, isReadFromAnOlderPortal) {
    portal.emplace(bus, dark, TestPortal::Kind::older);
    watch();
    EXPECT_TRUE(changesAre({true}));
}

TEST_F(DarkPreferenceTest, followsThePortalInBothDirections) {
    portal.emplace(bus, dark);
    watch();
    ASSERT_TRUE(changesAre({true}));
    TestPortal::tell(light);
    ASSERT_TRUE(changesAre({true, false}));
    TestPortal::tell(noPreference); // is not dark either
    TestPortal::tell(dark);
    ASSERT_TRUE(changesAre({true, false, true}));
    TestPortal::tell(noPreference);
    EXPECT_TRUE(changesAre({true, false, true, false}));
}

TEST_F(DarkPreferenceTest, isNotTakenFromOtherSettingsOrSenders) {
    portal.emplace(bus, dark);
    watch();
    ASSERT_TRUE(changesAre({true}));
    TestPortal::tell(light, appearance, "contrast");
    TestPortal::tell(light, "org.gnome.desktop.interface");
    auto stranger = bus.connect("stranger");
    TestPortal::tell(light, appearance, colourScheme, "stranger");
    // To everybody directly: the bus does not filter that by sender.
    for (const QString& client : stranger.interface()->registeredServiceNames().value()) {
        auto direct =
            QDBusMessage::createTargetedSignal(client, "/org/freedesktop/portal/desktop",
                                               "org.freedesktop.portal.Settings", "SettingChanged");
        direct << appearance << colourScheme << variant(light);
        ASSERT_TRUE(stranger.send(direct));
    }
    for (int turn = 0; turn < 3; ++turn) { // until the bus has delivered all that
        for (const auto& name : {portalName, stranger.name()}) {
            ASSERT_TRUE(QDBusConnection(name).interface()->registeredServiceNames().isValid());
        }
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(changes, std::vector<bool>{true});
    QDBusConnection::disconnectFromBus(stranger.name());
}

TEST_F(DarkPreferenceTest, isReadFromAPortalThatComesLater) {
    watch();
    portal.emplace(bus, dark);
    EXPECT_TRUE(changesAre({true}));
    portal.reset();
    portal.emplace(bus, light);
    EXPECT_TRUE(changesAre({true, false}));
}

TEST_F(DarkPreferenceTest, keepsNobodyWaitingWithoutAnAnswer) {
    const SilentBus silent;
    QElapsedTimer timer;
    timer.start();
    {
        std::atomic<bool> isAsked = false;
        const BusService mute(bus, portalName, [&](const QDBusMessage& question) {
            isAsked = true;
            return noAnswer(question);
        });
        watch();
        EXPECT_TRUE(eventually([&] { return isAsked.load(); }));
        watch(silent.address());
        EXPECT_TRUE(silent.isConnectedTo());
        watch("");
    }
    EXPECT_LT(std::chrono::milliseconds(timer.elapsed()), withoutWaiting);
    EXPECT_TRUE(changes.empty());
}

} // namespace
} // namespace vantoro::testing
