// SPDX-License-Identifier: GPL-3.0-or-later
// The selection options that `kel select` and `kel indexes` share, and the
// Show sequence they both run: tick, set the flex total, build the overview.
#pragma once

#include "engine/document/blockcatalogue.h"
#include "engine/document/document.h"
#include "engine/overview/subsheet.h"
#include "engine/selection/flextotal.h"
#include "engine/selection/selectionmodel.h"

#include <QLocale>
#include <QString>
#include <QStringList>

#include <optional>

namespace kel::cli {

/// The locale a locale name means ("sv_SE", "sv_SE.UTF-8", "de_DE@euro",
/// "C", "POSIX"), or nothing when Qt knows no such locale.
std::optional<QLocale> localeNamed(const QString &name);

/// The locale of numbers when --locale is not given: the first of LC_ALL,
/// LC_NUMERIC and LANG that is set and not empty, as the C library picks
/// it; C when none is set or the name is unknown (a script's environment
/// must not make kel fail).
QLocale environmentLocale();

struct SelectionArgs {
    QString selectSpec;
    bool hasSelect = false;
    QString flexSpec;
    bool hasFlex = false;
    bool flexCurrent = false;
    qint32 order = 0;
    std::optional<quint32> seed;
    /// Numbers are formatted in it: --locale, else the environment's.
    QLocale locale = environmentLocale();
    bool isSwedish = false;
    /// A settings file of the viewer: the user blocks it keeps for the document.
    QString settingsFile;
};

/// Takes the option at args[i] (and its value) when it is one of the shared
/// ones; returns false when it is not. `error` is set for a bad value.
bool takeSelectionOption(const QStringList &args, qsizetype &i, SelectionArgs &out, QString &error);

/// Show's refusal as kel prints it: its token in kel's JSON ("blocked" for
/// a blocked category or flex total, "none" for nobody, "tooSmall" below
/// the document's minimum) and the text the viewer would say.
struct RefusalWords {
    QString outcome;
    QString message;
};

/// kel's JSON token for a refusal of Show.
QString refusalToken(RefusalCode code);

/// The navigator, the blocks, the flex total and the overview after one Show.
struct ShownSelection {
    SelectionModel model;
    RecountResult recount;
    /// The document's blocks and the user blocks of --settings.
    BlockCatalogue blocks;
    FlexTotal flex;
    SubSheet sheet;
    /// Damaged values of the settings file's user blocks, left out.
    QStringList blockProblems;

    /// Set when Show would be disabled or the overview build refuses; then
    /// nothing of the selection (counts, rows, indexes) may be printed.
    std::optional<RefusalWords> refusal;
};

/// Ticks what the options ask for (after the stored user blocks) and
/// presses Show the way the navigator
/// does: when the recount leaves Show disabled nothing is applied and the
/// refusal is set; otherwise Show runs and builds the overview, whose own
/// refusal is taken over. On a bad --select or --flex value returns
/// nothing and sets `error`.
std::optional<ShownSelection> showFromArgs(const Document &doc, const SelectionArgs &args, QString &error);

} // namespace kel::cli
