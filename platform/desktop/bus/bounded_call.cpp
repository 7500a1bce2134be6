// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/bounded_call.h"

#include <array>

#include <sys/eventfd.h>

#include "platform/desktop/bus/asked_bus.h"
#include "platform/posix/file_descriptor.h"

namespace vantoro::desktop {

bool boundedCall(const std::string& busAddress, const BusMethod& question,
                 const std::vector<BusArgument>& arguments, const Patience& patience,
                 const BusReceive& read) {
    const auto deadline = std::chrono::steady_clock::now() + patience.limit;
    const posix::FileDescriptor stopped(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    const std::stop_callback tellOfStop(patience.stop,
                                        [&stopped] { ::eventfd_write(stopped.get(), 1); });
    if (patience.stop.stop_requested()) {
        return false;
    }
    bool hasSucceeded = false;
    AskedBus bus(busAddress, [&](AskedBus& connecting) {
        connecting.ask(question, arguments, [&](BusMessage& reply) {
            hasSucceeded = !reply.isError();
            if (hasSucceeded && read) {
                read(reply);
            }
        });
    });
    awaitAnswers(std::array{&bus}, deadline, stopped.get());
    return hasSucceeded;
}

} // namespace vantoro::desktop
