// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/locale.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <map>
#include <string>

#include <langinfo.h>

namespace vantoro::testing {

namespace {

using Variables = std::map<std::string, std::string>;

/// In an environment with these variables.
void useUtf8In(const Variables& variables) {
    for (const char* const name : {"LANG", "LC_ALL", "LC_CTYPE", "LC_MESSAGES"}) {
        unsetenv(name);
    }
    for (const auto& [name, value] : variables) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    posix::useUtf8();
}

std::string encoding() {
    std::setlocale(LC_ALL, "");
    return nl_langinfo(CODESET);
}

std::string language() {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const value = std::getenv(name);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return {};
}

} // namespace

TEST(LocaleTest, encodingIsUtf8InALocaleWithAnother) {
    for (const Variables& variables : {Variables{},
                                       {{"LANG", "C"}},
                                       {{"LC_ALL", "POSIX"}},
                                       {{"LC_CTYPE", "C"}},
                                       {{"LC_ALL", ""}}}) {
        useUtf8In(variables);
        EXPECT_EQ(encoding(), "UTF-8");
    }
}

TEST(LocaleTest, languageStays) {
    for (const Variables& variables :
         {Variables{{"LANG", "zh_CN.GB18030"}},
          {{"LC_ALL", "zh_CN.GB18030"}},
          {{"LC_ALL", "zh_CN.GB18030"}, {"LC_MESSAGES", "en_US.UTF-8"}}}) {
        useUtf8In(variables);
        EXPECT_EQ(language(), "zh_CN.GB18030");
    }
}

TEST(LocaleTest, localeWithUtf8Stays) {
    useUtf8In({{"LC_ALL", "C.UTF-8"}, {"LC_CTYPE", "C"}});
    EXPECT_STREQ(std::getenv("LC_ALL"), "C.UTF-8");
    EXPECT_STREQ(std::getenv("LC_CTYPE"), "C");
}

} // namespace vantoro::testing
