// SPDX-License-Identifier: GPL-3.0-or-later

#include <utility>

#include "app/window/network_module.h"

namespace vantoro {

AskForRecord askOverLoadedNetwork() {
    return [ask = AskForRecord()](const QUrl& location, std::chrono::milliseconds limit,
                                  std::function<void(RecordBody)> done) mutable {
        if (!ask) {
            ask = static_cast<const NetworkModule&>(
                      loadModule(moduleBesideTheProgram("vantoro-network.so"), networkModuleName))
                      .make();
        }
        return ask(location, limit, std::move(done));
    };
}

} // namespace vantoro
