// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QUrl>

#include "l10n/l10n.h"
#include "l10n/preferences.h"
#include "update/record_question.h"

namespace vantoro {

/// The download server of this build; HTTPS, without a trailing slash.
QString builtInBaseLocation();

/// Where and how to ask, and for how long.
struct UpdateSource {
    QString baseLocation = builtInBaseLocation();
    std::chrono::milliseconds limit = std::chrono::seconds(15); ///< for a whole check
    AskForRecord ask = nullptr;                                 ///< called only for HTTPS locations
};

/// Asks the download server on request whether there is a newer version; downloads nothing. Main
/// thread; never blocks or throws. Destruction cancels a running check without notification; not
/// from within a notification.
class UpdateChecker final : public QObject {
    Q_OBJECT

public:
    enum class Property : std::uint8_t { isChecking, message, downloadURL };

    struct Values {
        bool isChecking = false;
        /// The last result, in the language of that moment. May quote the server: not markup.
        std::optional<std::string> message;
        std::optional<QUrl> downloadURL; ///< set only after a check found a newer version
    };

    /// Opens a web page.
    using Open = std::function<void(const QUrl&)>;

    /// Asks nothing before the first check. `preferences` must outlive it.
    UpdateChecker(const Preferences& preferences, std::string currentVersion, Open open,
                  UpdateSource source);

    const Values& values() const { return values_; }

    const std::string& currentVersion() const { return currentVersion_; }

    /// The location of the latest version's record.
    const QUrl& metadataURL() const { return metadataURL_; }

    /// Starts a check, unless one is running.
    void checkForUpdates();
    /// Call when the user has read the message.
    void dismissMessage();
    /// Does nothing unless `downloadURL` is a web address.
    void openDownload() const;

Q_SIGNALS:
    /// After each write, even of an equal value.
    void propertyChanged(vantoro::UpdateChecker::Property property);

private:
    void ask();
    void conclude(const RecordBody& record);
    void publish(const RecordBody& record);

    template <class Value>
    void set(Property property, Value Values::* field, std::type_identity_t<Value> value);

    Values values_;
    L10n texts_;
    std::string currentVersion_;
    Open open_;
    UpdateSource source_;
    QUrl metadataURL_;
    std::unique_ptr<QObject> question_; // while it waits for an answer
};

} // namespace vantoro
