// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <expected>
#include <functional>
#include <memory>

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QUrl>

#include "update/update_metadata.h"

namespace vantoro {

using RecordBody = std::expected<QByteArray, UpdateError>;

/// Requests the latest version's record at a location, until `limit` has passed. Destroying the
/// result cancels that. Calls `done` once, from the event loop; `done` may destroy the result. Main
/// thread; never blocks. Throws std::runtime_error if requests are impossible.
using AskForRecord = std::function<std::unique_ptr<QObject>(
    const QUrl& location, std::chrono::milliseconds limit, std::function<void(RecordBody)> done)>;

} // namespace vantoro
