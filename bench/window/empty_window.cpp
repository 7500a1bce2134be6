// SPDX-License-Identifier: GPL-3.0-or-later

// What any program of the toolkit needs for a window: the measure for ours.

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
