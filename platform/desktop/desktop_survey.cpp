// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/desktop_survey.h"

#include <functional>
#include <optional>
#include <utility>

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

#include "platform/desktop/bus/bus_connection.h"
#include "platform/desktop/bus/service_owner.h"
#include "platform/desktop/power/logind.h"
#include "platform/desktop/status_area/status_notifier_area.h"

namespace vantoro::desktop {

namespace {

Presence presence(bool isThere) {
    return isThere ? Presence::present : Presence::absent;
}

/// The questions that are under way. Calls `complete` from the event loop once all are answered.
class Questions {
public:
    Questions(const BusAddresses& buses, std::function<void()> complete)
        : complete_(std::move(complete)),
          area_(buses.session),
          sessionBus_(buses.session),
          systemBus_(buses.system) {
        askSession();
        askLoginManager();
    }

    const DesktopSurvey& answers() const { return answers_; }

    bool areAnswered() const {
        return answers_.sessionBus != Presence::unknown &&
               answers_.statusArea != Presence::unknown && answers_.portal != Presence::unknown &&
               answers_.sleepDelay != SleepDelay::unknown;
    }

private:
    void askSession();
    void askPortal();
    void askLoginManager();
    void askToDelaySleep(const std::string& loginManager);

    template <class Answer>
    void set(Answer& answer, Answer value) {
        answer = value;
        if (areAnswered()) {
            complete_();
        }
    }

    std::function<void()> complete_;
    DesktopSurvey answers_;
    StatusNotifierArea area_;
    BusConnection sessionBus_;
    BusConnection systemBus_;
    std::optional<ServiceOwner> loginManager_;
};

void Questions::askSession() {
    if (!sessionBus_.isOpen()) {
        answers_.sessionBus = answers_.statusArea = answers_.portal = Presence::absent;
        return;
    }
    if (const auto known = area_.isAvailable()) {
        answers_.statusArea = presence(*known);
    }
    area_.setAvailabilityChanged(
        [this] { set(answers_.statusArea, presence(area_.isAvailable().value_or(false))); });
    sessionBus_.call(
        {.service = "org.freedesktop.DBus",
         .path = "/org/freedesktop/DBus",
         .interface = "org.freedesktop.DBus",
         .member = "GetId"},
        {}, [this](BusMessage& reply) { set(answers_.sessionBus, presence(!reply.isError())); });
    askPortal();
}

/// A portal has those interfaces that the desktop's back end can serve.
void Questions::askPortal() {
    sessionBus_.call({.service = "org.freedesktop.portal.Desktop",
                      .path = "/org/freedesktop/portal/desktop",
                      .interface = "org.freedesktop.DBus.Properties",
                      .member = "Get"},
                     {"org.freedesktop.portal.Inhibit", "version"}, [this](BusMessage& reply) {
                         set(answers_.portal, presence(!reply.isError()));
                     });
}

void Questions::askLoginManager() {
    if (!systemBus_.isOpen()) {
        answers_.sleepDelay = SleepDelay::noLoginManager;
        return;
    }
    loginManager_.emplace(systemBus_, loginManagerService, [this] {
        if (const auto owner = loginManager_->name().value_or(""); !owner.empty()) {
            askToDelaySleep(owner);
        } else {
            set(answers_.sleepDelay, SleepDelay::noLoginManager);
        }
    });
}

void Questions::askToDelaySleep(const std::string& loginManager) {
    const LogindInhibitor wanted{
        .what = "sleep", .reason = "Recording", .mode = "delay", .lock = std::nullopt};
    askToInhibit(systemBus_, loginManager, wanted, [this](BusMessage& reply) {
        const bool isGranted = !reply.isError() && reply.readDescriptor().has_value();
        set(answers_.sleepDelay, isGranted ? SleepDelay::granted : SleepDelay::refused);
    });
}

} // namespace

DesktopSurvey surveyDesktop(const BusAddresses& buses, std::chrono::milliseconds limit) {
    QEventLoop loop;
    const Questions questions(buses, [&loop] { loop.quit(); });
    if (!questions.areAnswered()) {
        QTimer::singleShot(limit, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return questions.answers();
}

} // namespace vantoro::desktop
