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
    /// A settings file of the viewer: the user blocks it keeps for the document.
    QString settingsFile;
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
    /// Damaged values of the settings file's user blocks, left out.
    QStringList blockProblems;
    QString message; ///< the refusal, in the chosen language; "" when shown
};

/// Appends the user blocks that `settingsFile` keeps for `doc`, as the
/// viewer does when it opens the document; the file is only read. False
/// with `error` set when the file does not exist.
bool applyStoredBlocks(Document &doc, const QString &settingsFile, QStringList &problems, QString &error);

/// Ticks what the options ask for (after the stored user blocks), runs Show and builds the overview. On a
/// bad --select or --flex value returns nothing and sets `error`.
std::optional<ShownSelection> showFromArgs(Document &doc, const SelectionArgs &args, QString &error);

} // namespace kel::cli
