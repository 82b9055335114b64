// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/mainwindow.h"

#include <QApplication>
#include <QLocale>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Brennvik AB"));
    QApplication::setApplicationName(QStringLiteral("KEL Viewer"));
    const bool isSwedish = QLocale().language() == QLocale::Swedish;
    kel::MainWindow window(isSwedish);
    window.show();
    const QStringList args = QApplication::arguments();
    if (args.size() > 1)
        window.openFile(args.at(1));
    return app.exec();
}
