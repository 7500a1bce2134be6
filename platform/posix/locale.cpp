// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/locale.h"

#include <clocale>
#include <cstdlib>
#include <string_view>

#include <langinfo.h>

namespace vantoro::posix {

// Failure is harmless: the warning appears.
void useUtf8() noexcept {
    std::setlocale(LC_ALL, "");
    if (nl_langinfo(CODESET) == std::string_view("UTF-8")) {
        return;
    }
    // In the environment, where Qt reads the locale. LC_ALL would outweigh LC_CTYPE.
    if (const char* const all = std::getenv("LC_ALL"); all != nullptr && *all != '\0') {
        setenv("LANG", all, 1);
        setenv("LC_MESSAGES", all, 1);
        unsetenv("LC_ALL");
    }
    setenv("LC_CTYPE", "C.UTF-8", 1);
}

} // namespace vantoro::posix
