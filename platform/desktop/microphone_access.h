#pragma once

#include <filesystem>
#include <functional>

#include <QtDBus/QDBusConnection>

#include "engine/ports/permissions.h"

namespace vantoro::desktop {

/// What the desktop says about recording a microphone, read anew at each call. Any thread; takes
/// about a second at most when the desktop's services do not answer, beside what the two functions
/// given to it take.
class DesktopMicrophoneAccess final : public MicrophoneAccess {
public:
    /// `openMicrophone` records for a moment, which is how a sandbox is made to ask its user: true
    /// when it could. `chosenSourceIsHidden`: whether a microphone was chosen that the sound
    /// server does not let us see. Either may be called on any thread.
    DesktopMicrophoneAccess(std::function<bool()> openMicrophone,
                            std::function<bool()> chosenSourceIsHidden,
                            QDBusConnection sessionBus = QDBusConnection::sessionBus(),
                            std::filesystem::path sandboxDescription = "/.flatpak-info");

    AuthorizationStatus status() override;
    bool request() override;

private:
    std::function<bool()> openMicrophone_;
    std::function<bool()> chosenSourceIsHidden_;
    QDBusConnection sessionBus_;
    std::filesystem::path sandboxDescription_;
};

} // namespace vantoro::desktop
