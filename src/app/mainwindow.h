// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMainWindow>

namespace kel {

/// The viewer's main window. For now it shows what the reader found in the
/// document named on the command line.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(bool isSwedish, QWidget *parent = nullptr);
    void openFile(const QString &path);

private:
    bool mIsSwedish;
};

} // namespace kel
