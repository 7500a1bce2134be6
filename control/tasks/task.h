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

/// What work returned, or what it threw.
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

/// Has `work` done on a task thread and its answer given to `then`, with the owner, on the main
/// thread; only to be dropped there when the owner, an object of that thread, is gone. Work must
/// hold what it needs by itself.
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
