// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/opening.h"

#include <utility>

#include "platform/desktop/gio/default_application.h"
#include "platform/desktop/opening/file_manager.h"
#include "platform/desktop/opening/file_uri.h"
#include "platform/desktop/opening/opening_portal.h"

namespace vantoro::desktop {

Opening::Opening(std::string sessionBus, bool sandboxed, Patience patience)
    : sessionBus_(std::move(sessionBus)), sandboxed_(sandboxed), patience_(std::move(patience)) {}

bool Opening::file(const std::filesystem::path& file) const {
    const bool opened = sandboxed_ ? openByPortal(sessionBus_, file, patience_)
                                   : openWithDefaultApplication(fileURI(file), patience_);
    return opened || reveal(file);
}

bool Opening::folder(const std::filesystem::path& folder) const {
    return sandboxed_ ? openByPortal(sessionBus_, folder, patience_)
                      : openWithDefaultApplication(fileURI(folder), patience_) ||
                            showFolderInManager(sessionBus_, folder, patience_);
}

bool Opening::reveal(const std::filesystem::path& file) const {
    const bool revealed = sandboxed_ ? revealByPortal(sessionBus_, file, patience_)
                                     : showFileInManager(sessionBus_, file, patience_);
    return revealed || folder(file.parent_path());
}

bool Opening::address(const std::string& address) const {
    if (!sandboxed_) {
        return openWithDefaultApplication(address, patience_);
    }
    const auto file = fileOfURI(address);
    return file ? openByPortal(sessionBus_, *file, patience_)
                : openAddressByPortal(sessionBus_, address, patience_);
}

} // namespace vantoro::desktop
