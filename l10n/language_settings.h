// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtCore/QObject>

#include "l10n/app_language.h"
#include "l10n/preferences.h"

namespace vantoro {

/// The language that the user chose, for a menu to offer and views to follow. Main thread.
class LanguageSettings final : public QObject {
    Q_OBJECT

public:
    /// Reads what is stored, and stores nothing. `preferences` must outlive it.
    explicit LanguageSettings(Preferences& preferences);

    AppLanguage language() const { return language_; }

    /// Chooses and stores a language. Choosing the current one again counts as a change like any
    /// other: nothing may have been stored yet, or something else since.
    void setLanguage(AppLanguage language);

Q_SIGNALS:
    /// After each choice was stored: texts that are fetched now are in the new language.
    void languageChanged();

private:
    Preferences& preferences_;
    AppLanguage language_;
};

} // namespace vantoro
