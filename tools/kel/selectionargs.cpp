// SPDX-License-Identifier: GPL-3.0-or-later
#include "selectionargs.h"

#include "engine/blocks/userblocks.h"
#include "engine/settings/settingsstore.h"

#include <QFileInfo>
#include "texts/messages.h"

#include <QDateTime>

namespace kel::cli {

namespace {

bool parseNumber(const QString &text, qint32 &value)
{
    bool ok = false;
    value = text.trimmed().toInt(&ok);
    return ok;
}

// "C:O,O;C:" — each named category keeps exactly the listed options.
bool applySelectSpec(const Document &doc, SelectionModel &model, const QString &text, QString &error)
{
    const qint32 categories = qint32(doc.categories.size());
    for (const QString &part : text.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const qsizetype colon = part.indexOf(QLatin1Char(':'));
        qint32 c = -1;
        if (colon < 0 || !parseNumber(part.left(colon), c)) {
            error = QStringLiteral("--select: '%1' is not CATEGORY:OPTION,...").arg(part);
            return false;
        }
        if (c < 0 || c >= categories) {
            error = QStringLiteral("--select: the document has no category %1 (it has %2)").arg(c).arg(categories);
            return false;
        }
        const Question &q = doc.questions[std::size_t(doc.categories[std::size_t(c)])];
        model.setCategoryChecked(c, false);
        for (const QString &o : part.mid(colon + 1).split(QLatin1Char(','), Qt::SkipEmptyParts)) {
            qint32 option = -1;
            if (!parseNumber(o, option) || option < 0 || option >= q.alternativeCount) {
                error = QStringLiteral("--select: category %1 has no option '%2'").arg(c).arg(o);
                return false;
            }
            model.setOptionChecked(c, option, true);
        }
    }
    return true;
}

bool applyFlexSpec(const Document &doc, SelectionModel &model, const QString &text, QString &error)
{
    if (!model.flexVisible()) {
        error = QStringLiteral("--flex: the document has no flex category");
        return false;
    }
    const qint32 first = firstVisibleOption(doc);
    const qint32 options = qint32(model.flexOptions().size());
    for (qint32 o = first; o < options; ++o)
        model.setFlexOption(o, false);
    for (const QString &o : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        qint32 option = -1;
        if (!parseNumber(o, option) || option < 0 || option >= options) {
            error = QStringLiteral("--flex: the flex category has no option '%1'").arg(o);
            return false;
        }
        if (option >= first)
            model.setFlexOption(option, true);
    }
    return true;
}

} // namespace

bool takeSelectionOption(const QStringList &args, qsizetype &i, SelectionArgs &out, QString &error)
{
    const QString &a = args[i];
    const bool hasValue = i + 1 < args.size();
    auto value = [&]() -> QString {
        if (!hasValue) {
            error = QStringLiteral("%1 needs a value").arg(a);
            return QString();
        }
        return args[++i];
    };
    if (a == QLatin1String("--select")) {
        out.selectSpec = value();
        out.hasSelect = true;
    } else if (a == QLatin1String("--flex")) {
        out.flexSpec = value();
        out.hasFlex = true;
    } else if (a == QLatin1String("--flex-current")) {
        out.flexCurrent = true;
    } else if (a == QLatin1String("--order")) {
        const QString v = value();
        if (error.isEmpty() && (!parseNumber(v, out.order)))
            error = QStringLiteral("--order takes a number, not '%1'").arg(v);
    } else if (a == QLatin1String("--seed")) {
        const QString v = value();
        bool ok = false;
        const quint32 seed = v.toUInt(&ok);
        if (error.isEmpty() && !ok)
            error = QStringLiteral("--seed takes a non-negative number, not '%1'").arg(v);
        out.seed = seed;
    } else if (a == QLatin1String("--locale")) {
        const QString v = value();
        out.locale = (v == QLatin1String("C") || v.isEmpty()) ? QLocale::c() : QLocale(v);
    } else if (a == QLatin1String("--settings")) {
        out.settingsFile = value();
    } else if (a == QLatin1String("--lang")) {
        const QString v = value();
        if (error.isEmpty() && v != QLatin1String("en") && v != QLatin1String("sv"))
            error = QStringLiteral("--lang takes en or sv, not '%1'").arg(v);
        out.isSwedish = v == QLatin1String("sv");
    } else {
        return false;
    }
    return true;
}

bool applyStoredBlocks(Document &doc, const QString &settingsFile, QStringList &problems, QString &error)
{
    if (!QFileInfo(settingsFile).isFile()) {
        error = QStringLiteral("--settings: no such file '%1'").arg(settingsFile);
        return false;
    }
    SettingsLocation location;
    location.file = settingsFile;
    SettingsStore store(location);
    problems = restoreUserBlocks(doc, store, false).problems;
    return true;
}

std::optional<ShownSelection> showFromArgs(Document &doc, const SelectionArgs &args, QString &error)
{
    ShownSelection shown;
    if (!args.settingsFile.isEmpty() && !applyStoredBlocks(doc, args.settingsFile, shown.blockProblems, error))
        return std::nullopt;
    shown.model.setUpDimensions(doc);
    shown.flex.reset(doc);
    if (args.hasSelect && !applySelectSpec(doc, shown.model, args.selectSpec, error))
        return std::nullopt;
    if (args.hasFlex && !applyFlexSpec(doc, shown.model, args.flexSpec, error))
        return std::nullopt;
    if (args.flexCurrent && shown.model.flexVisible())
        shown.model.setFlexBasedOnCurrentSelection(true);
    shown.recount = shown.model.recount(doc);

    // The engine's Show decides, as it does for the viewer's button: a
    // blocked category or flex total, nobody, or too few are refused there.
    // A random order the document forces protects the respondents, so it is
    // never drawn from a seed given on the command line.
    const bool forced = documentForcesRandomOrder(doc.properties, shown.recount.count);
    RowRandom random(args.seed && !forced ? *args.seed : quint64(QDateTime::currentMSecsSinceEpoch()));
    shown.sheet = kel::showSelection(doc, shown.model, shown.flex, args.order, random);
    const QString message = showRefusalMessage(doc, shown.sheet.outcome, args.isSwedish);
    switch (shown.sheet.outcome) {
    case SubSheetOutcome::Ok: break;
    case SubSheetOutcome::Blocked:
    case SubSheetOutcome::FlexTotalBlocked: shown.refusal = Refusal{QStringLiteral("blocked"), message}; break;
    case SubSheetOutcome::NoAnswers: shown.refusal = Refusal{QStringLiteral("none"), message}; break;
    case SubSheetOutcome::TooSmall: shown.refusal = Refusal{QStringLiteral("tooSmall"), message}; break;
    }
    return shown;
}

} // namespace kel::cli
