// SPDX-License-Identifier: GPL-3.0-or-later
// The selection options that `kel select` and `kel indexes` share, and the
// Show sequence they both run: tick, set the flex total, build the overview.
#pragma once

#include "engine/document/document.h"
#include "engine/overview/subsheet.h"
#include "engine/selection/flextotal.h"
#include "engine/selection/selectionmodel.h"

#include <QLocale>
#include <QString>
#include <QStringList>

#include <optional>

namespace kel::cli {

struct SelectionArgs {
    QString file;
    QString selectSpec;
    bool hasSelect = false;
    QString flexSpec;
    bool hasFlex = false;
    bool flexCurrent = false;
    qint32 order = 0;
    std::optional<quint32> seed;
    QLocale locale = QLocale::c();
    bool isSwedish = false;
};

/// Takes the option at args[i] (and its value) when it is one of the shared
/// ones; returns false when it is not. `error` is set for a bad value.
bool takeSelectionOption(const QStringList &args, qsizetype &i, SelectionArgs &out, QString &error);

/// The navigator, the flex total and the overview after one Show.
struct ShownSelection {
    SelectionModel model;
    RecountResult recount;
    FlexTotal flex;
    SubSheet sheet;
    QString message; ///< the refusal, in the chosen language; "" when shown
};

/// Ticks what the options ask for, runs Show and builds the overview. On a
/// bad --select or --flex value returns nothing and sets `error`.
std::optional<ShownSelection> showFromArgs(Document &doc, const SelectionArgs &args, QString &error);

} // namespace kel::cli
