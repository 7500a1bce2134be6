// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/displays.h"

#include <algorithm>
#include <future>
#include <memory>
#include <stdexcept>

#include <QtCore/QThread>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

namespace vantoro::desktop {

namespace {

constexpr std::uint32_t virtualDisplayID = 1;

/// FNV-1a: the same from one start of the program to the next.
std::uint32_t hashOf(const std::string& text) {
    std::uint32_t hash = 2166136261U;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    }
    return hash;
}

/// On the application's thread.
std::vector<std::string> connectedScreens() {
    std::vector<std::string> screens;
    for (const QScreen* const screen : QGuiApplication::screens()) { // the primary one comes first
        screens.push_back((screen->name() + '\n' + screen->serialNumber()).toStdString());
    }
    return screens;
}

} // namespace

std::vector<Display> DesktopDisplays::displays() {
    auto* const application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    if (application == nullptr) {
        return displaysOf({});
    }
    if (application->thread() == QThread::currentThread()) {
        return displaysOf(connectedScreens());
    }
    // Shared: the answer may come after nobody waits for it any more.
    const auto answer = std::make_shared<std::promise<std::vector<std::string>>>();
    auto screens = answer->get_future();
    QMetaObject::invokeMethod(
        application, [answer] { answer->set_value(connectedScreens()); }, Qt::QueuedConnection);
    if (screens.wait_for(limit_) != std::future_status::ready) {
        throw std::runtime_error("The window system did not answer.");
    }
    return displaysOf(screens.get());
}

std::uint32_t DesktopDisplays::mainDisplayID() {
    return displays().front().displayID;
}

std::vector<Display> displaysOf(const std::vector<std::string>& screens) {
    if (screens.empty()) {
        return {{.displayID = virtualDisplayID}};
    }
    std::vector<Display> displays;
    for (const auto& screen : screens) {
        Display display{.displayID = hashOf(screen)};
        while (std::ranges::find(displays, display) != displays.end()) {
            ++display.displayID;
        }
        displays.push_back(display);
    }
    return displays;
}

} // namespace vantoro::desktop
