// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/detached_program.h"

#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace vantoro::desktop {

bool startDetached(const CommandLine& command, const std::string& searchPath) {
    const auto folders = QString::fromStdString(searchPath).split(':', Qt::SkipEmptyParts);
    // If given no folders, Qt would search those of the environment.
    const auto program =
        folders.isEmpty()
            ? QString()
            : QStandardPaths::findExecutable(QString::fromStdString(command.front()), folders);
    if (program.isEmpty()) {
        return false;
    }
    QStringList arguments;
    for (auto argument = command.begin() + 1; argument != command.end(); ++argument) {
        arguments << QString::fromStdString(*argument);
    }
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    return process.startDetached();
}

} // namespace vantoro::desktop
