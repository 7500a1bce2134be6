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

/// A question for the record of the latest version, for as long as an answer is waited for.
/// Destroying it ends the wait.
class RecordQuestion {
public:
    RecordQuestion() = default;
    RecordQuestion(const RecordQuestion&) = delete;
    RecordQuestion& operator=(const RecordQuestion&) = delete;
    virtual ~RecordQuestion() = default;
};

/// Asks for what is at a location, until `limit` has passed. `done` is called once, from the event
/// loop, and may destroy the question. Main thread; blocks nowhere, and throws std::runtime_error
/// where nobody can be asked.
using AskForRecord = std::function<std::unique_ptr<RecordQuestion>(
    const QUrl& location, std::chrono::milliseconds limit, std::function<void(RecordBody)> done)>;

} // namespace vantoro
