// SPDX-License-Identifier: GPL-3.0-or-later

// An empty window of the same toolkit, to compare with.

#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    window.setWindowTitle("Empty");
    window.resize(500, 600);
    window.show();
    return QApplication::exec();
}
