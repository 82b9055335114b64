// SPDX-License-Identifier: GPL-3.0-or-later
// File > Create Report...: the dialog gets the document and the selection
// as the overview shows them, so a report of "the current selection" is
// the one on the screen.
#pragma once

#include "gui/common/commandcontext.h"

#include <QObject>

namespace kel {

class ReportCommands : public QObject
{
    Q_OBJECT
public:
    ReportCommands(const CommandContext &context, QObject *parent) : QObject(parent), mContext(context) { }

    void createReport();

private:
    CommandContext mContext;
};

} // namespace kel
