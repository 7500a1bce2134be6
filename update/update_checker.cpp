// SPDX-License-Identifier: GPL-3.0-or-later

#include "update/update_checker.h"

#include <stdexcept>
#include <utility>

#include <QtCore/QMetaObject>

#include "update/valid_url.h"

namespace vantoro {

QString builtInBaseLocation() {
    return QStringLiteral(VANTORO_UPDATE_URL);
}

UpdateChecker::UpdateChecker(const Preferences& preferences, std::string currentVersion, Open open,
                             UpdateSource source)
    : texts_(preferences),
      currentVersion_(std::move(currentVersion)),
      open_(std::move(open)),
      source_(std::move(source)),
      metadataURL_(source_.baseLocation + "/downloads/latest.json", QUrl::StrictMode) {}

void UpdateChecker::checkForUpdates() {
    if (values_.isChecking) {
        return;
    }
    set(Property::isChecking, &Values::isChecking, true);
    set(Property::message, &Values::message, std::nullopt);
    set(Property::downloadURL, &Values::downloadURL, std::nullopt);
    // Setting up the network takes a moment; show the new state first.
    QMetaObject::invokeMethod(this, &UpdateChecker::ask, Qt::QueuedConnection);
}

void UpdateChecker::dismissMessage() {
    set(Property::message, &Values::message, std::nullopt);
}

void UpdateChecker::openDownload() const {
    if (values_.downloadURL && isWebLocation(*values_.downloadURL)) {
        open_(*values_.downloadURL);
    }
}

void UpdateChecker::ask() {
    if (metadataURL_.scheme() != "https") {
        conclude(std::unexpected(UpdateError::invalidResponse));
        return;
    }
    try {
        question_ = source_.ask(metadataURL_, source_.limit,
                                [this](const RecordBody& record) { conclude(record); });
    } catch (const std::runtime_error&) {
        conclude(std::unexpected(UpdateError::invalidResponse));
    }
}

void UpdateChecker::conclude(const RecordBody& record) {
    question_.reset();
    publish(record);
    set(Property::isChecking, &Values::isChecking, false);
}

void UpdateChecker::publish(const RecordBody& record) {
    using enum L10n::Key;
    const auto metadata =
        record.has_value() ? UpdateMetadata::decode(*record) : std::unexpected(record.error());
    const auto newer = metadata.has_value()
                           ? newerVersion(*metadata, currentVersion_, source_.baseLocation)
                           : std::unexpected(metadata.error());
    if (!newer.has_value()) {
        set(Property::message, &Values::message, texts_.text(updateCheckFailed));
    } else if (const auto& offer = *newer; !offer.has_value()) {
        set(Property::message, &Values::message, texts_.text(alreadyLatest));
    } else {
        set(Property::downloadURL, &Values::downloadURL, offer->location);
        set(Property::message, &Values::message, texts_.newVersionAvailable(offer->version));
    }
}

template <class Value>
void UpdateChecker::set(Property property, Value Values::* field,
                        std::type_identity_t<Value> value) {
    values_.*field = std::move(value);
    Q_EMIT propertyChanged(property);
}

} // namespace vantoro
