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

/// The download server that this build asks; HTTPS, without a slash at the end.
QString builtInBaseLocation();

/// Whom to ask, for how long, and by which way.
struct UpdateSource {
    QString baseLocation = builtInBaseLocation();
    std::chrono::milliseconds limit = std::chrono::seconds(15); ///< for a whole check
    AskForRecord ask = nullptr; ///< not called where the location is not HTTPS
};

/// Asks the download server, when the user wants to know, whether there is a newer version than
/// this one. It downloads and installs nothing. Main thread; nothing here blocks or throws. Must
/// not be destroyed from within a notification.
class UpdateChecker final : public QObject {
    Q_OBJECT

public:
    enum class Property : std::uint8_t { isChecking, message, downloadURL };

    struct Values {
        bool isChecking = false;
        /// What the last check found, in the language of that moment. It may quote the server: to
        /// be shown as plain text, without markup.
        std::optional<std::string> message;
        std::optional<QUrl> downloadURL; ///< only after a check found a newer version
    };

    /// How the desktop opens a web page.
    using Open = std::function<void(const QUrl&)>;

    /// Asks nobody: that waits for the first check. `preferences` must outlive it.
    UpdateChecker(const Preferences& preferences, std::string currentVersion, Open open,
                  UpdateSource source);
    UpdateChecker(const UpdateChecker&) = delete;
    UpdateChecker& operator=(const UpdateChecker&) = delete;
    /// Ends a check that is running: nobody hears of it any more.
    ~UpdateChecker() override;

    const Values& values() const { return values_; }

    const std::string& currentVersion() const { return currentVersion_; }

    /// Where the record of the latest version is.
    const QUrl& metadataURL() const { return metadataURL_; }

    /// Begins a check, unless one is running.
    void checkForUpdates();
    /// The user has read it.
    void dismissMessage();
    /// Does nothing where there is no `downloadURL`, or none of the web.
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
    std::unique_ptr<RecordQuestion> question_; // while it waits for an answer
};

} // namespace vantoro
