// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtCore/QObject>
#include <QtGui/QPalette>

namespace vantoro {

/// What the toolkit draws its windows with where it knows that they should be dark.
QPalette darkPalette();

/// Draws the program's windows dark where the toolkit leaves that to the program: it has no colours
/// of the desktop, and does not know what the user prefers. One, while there is a QApplication;
/// main thread.
class DarkColours final : public QObject {
    Q_OBJECT

public:
    DarkColours();

    /// Dark, or as the toolkit has it. All windows follow at once.
    void prefer(bool dark);

private:
    bool isOurs_ = false; ///< whether the application's palette is
};

} // namespace vantoro
