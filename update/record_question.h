// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <expected>
#include <functional>
#include <memory>

#include <QtCore/QByteArray>
#include <QtCore/QUrl>

#include "update/update_error.h"

namespace vantoro {

using RecordBody = std::expected<QByteArray, UpdateError>;

/// A pending request for the latest version's record. Destruction cancels it.
class RecordQuestion {
public:
    RecordQuestion() = default;
    RecordQuestion(const RecordQuestion&) = delete;
    RecordQuestion& operator=(const RecordQuestion&) = delete;
    virtual ~RecordQuestion() = default;
};

/// Requests the record at a location, until `limit` has passed. Calls `done` once, from the event
/// loop; `done` may destroy the question. Main thread; never blocks. Throws std::runtime_error if
/// requests are impossible.
using AskForRecord = std::function<std::unique_ptr<RecordQuestion>(
    const QUrl& location, std::chrono::milliseconds limit, std::function<void(RecordBody)> done)>;

} // namespace vantoro
