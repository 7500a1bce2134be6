// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <expected>
#include <functional>
#include <type_traits>
#include <utility>

#include <QtCore/QPointer>

#include "control/ports/scheduler.h"

namespace vantoro {

/// A result, or the exception thrown instead.
template <class Result>
using Answer = std::expected<Result, std::exception_ptr>;

template <class Work>
Answer<std::invoke_result_t<Work&>> answerOf(Work& work) {
    try {
        if constexpr (std::is_void_v<std::invoke_result_t<Work&>>) {
            work();
            return {};
        } else {
            return work();
        }
    } catch (...) {
        return std::unexpected(std::current_exception());
    }
}

/// Runs `work`, which must own what it uses, on a task thread, and `then` with the owner and the
/// answer on the main thread, unless the owner, a main-thread object, is gone by then.
template <class Owner, class Work, class Then>
void runTask(Scheduler& scheduler, const QPointer<Owner>& owner, Work work, Then then) {
    scheduler.runOnTaskThread([&scheduler, owner, work = std::move(work), then]() mutable {
        scheduler.runOnMainThread([owner, then, answer = answerOf(work)] {
            if (owner) {
                std::invoke(then, *owner, answer);
            }
        });
    });
}

} // namespace vantoro
