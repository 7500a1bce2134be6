// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtCore/QObject>

#include "l10n/app_language.h"
#include "l10n/preferences.h"

namespace vantoro {

/// The user's choice of language, with change notification. Main thread.
class LanguageSettings final : public QObject {
    Q_OBJECT

public:
    /// Reads the stored language; stores nothing. `preferences` must outlive it.
    explicit LanguageSettings(Preferences& preferences);

    AppLanguage language() const { return language_; }

    /// Stores the language. Also stores and notifies if it equals the current one, since the stored
    /// value may be missing or different.
    void setLanguage(AppLanguage language);

Q_SIGNALS:
    /// After each choice is stored; texts looked up from now on are in the new language.
    void languageChanged();

private:
    Preferences& preferences_;
    AppLanguage language_;
};

} // namespace vantoro
