// SPDX-License-Identifier: GPL-3.0-or-later
#include "selectionargs.h"

#include "engine/blocks/userblocks.h"
#include "engine/selection/selectionquery.h"
#include "engine/settings/settingsstore.h"

#include <QFileInfo>
#include "texts/messages.h"
#include "texts/selectiontexts.h"

#include <QDateTime>
#include <QRegularExpression>

namespace kel::cli {

namespace {

bool parseNumber(const QString &text, qint32 &value)
{
    bool ok = false;
    value = text.trimmed().toInt(&ok);
    return ok;
}

QString queryErrorText(const Document &doc, const char *option, const QueryError &e, bool isSwedish)
{
    return QStringLiteral("%1: %2").arg(QLatin1String(option), queryErrorMessage(doc, e, isSwedish));
}

bool applySelectSpec(const Document &doc, SelectionModel &model, const QString &text, bool isSwedish, QString &error)
{
    QueryError problem;
    if (applySelectionQuery(doc, model, text, problem))
        return true;
    error = queryErrorText(doc, "--select", problem, isSwedish);
    return false;
}

bool applyFlexSpec(const Document &doc, SelectionModel &model, const QString &text, bool isSwedish, QString &error)
{
    if (!model.flexVisible()) {
        error = QStringLiteral("--flex: the document has no flex category");
        return false;
    }
    const ParsedSelectionQuery parsed = parseOptionList(doc, doc.flexCategory, text);
    if (!parsed.ok()) {
        error = queryErrorText(doc, "--flex", parsed.error, isSwedish);
        return false;
    }
    const qint32 first = firstVisibleOption(doc);
    for (qint32 o = first; o < qint32(model.flexOptions().size()); ++o)
        model.setFlexOption(o, false);
    for (const qint32 option : parsed.categories.front().options)
        model.setFlexOption(option, true);
    return true;
}

} // namespace

std::optional<QLocale> localeNamed(const QString &name)
{
    // The encoding and the modifier say nothing about numbers.
    const QString bare = name.section(QLatin1Char('.'), 0, 0).section(QLatin1Char('@'), 0, 0);
    if (bare == QLatin1String("C") || bare == QLatin1String("POSIX"))
        return QLocale::c();
    if (bare.isEmpty())
        return std::nullopt;
    // Qt reads any name as the nearest locale it knows ("no_such_LOCALE"
    // as Norwegian), so each part is checked: language, then an optional
    // script and territory, with codes Qt knows.
    static const QRegularExpression form(
        QStringLiteral("^([a-zA-Z]{2,3})(?:[_-]([A-Z][a-z]{3}))?(?:[_-]([A-Z]{2}|[0-9]{3}))?$"));
    const QRegularExpressionMatch m = form.match(bare);
    if (!m.hasMatch() || QLocale::codeToLanguage(m.captured(1)) == QLocale::AnyLanguage
        || (m.hasCaptured(2) && QLocale::codeToScript(m.captured(2)) == QLocale::AnyScript)
        || (m.hasCaptured(3) && QLocale::codeToTerritory(m.captured(3)) == QLocale::AnyTerritory))
        return std::nullopt;
    return QLocale(bare);
}

QLocale environmentLocale()
{
    for (const char *variable : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
        const QString name = qEnvironmentVariable(variable);
        if (!name.isEmpty())
            return localeNamed(name).value_or(QLocale::c());
    }
    return QLocale::c();
}

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
        if (const std::optional<QLocale> locale = localeNamed(v))
            out.locale = *locale;
        else if (error.isEmpty())
            error = QStringLiteral("--locale: no locale '%1' (a name such as C, en_US or sv_SE)").arg(v);
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

QString refusalToken(RefusalCode code)
{
    switch (code) {
    case RefusalCode::Blocked:
    case RefusalCode::FlexTotalBlocked: return QStringLiteral("blocked");
    case RefusalCode::NoAnswers: return QStringLiteral("none");
    case RefusalCode::TooSmall: return QStringLiteral("tooSmall");
    case RefusalCode::SplitNotAllowed: return QStringLiteral("splitNotAllowed");
    case RefusalCode::NoSuchGraph: return QStringLiteral("noSuchGraph");
    }
    return QString();
}

namespace {

// Appends the user blocks that `settingsFile` keeps for `doc`, as the viewer
// does when it opens the document; the file is only read.
bool applyStoredBlocks(const Document &doc, BlockCatalogue &catalogue, const QString &settingsFile,
                       QStringList &problems, QString &error)
{
    if (!QFileInfo(settingsFile).isFile()) {
        error = QStringLiteral("--settings: no such file '%1'").arg(settingsFile);
        return false;
    }
    SettingsLocation location;
    location.file = settingsFile;
    SettingsStore store(location);
    problems = restoreUserBlocks(doc, catalogue, store, false).problems;
    return true;
}

} // namespace

std::optional<ShownSelection> showFromArgs(const Document &doc, const SelectionArgs &args, QString &error)
{
    ShownSelection shown;
    shown.blocks = BlockCatalogue(doc);
    if (!args.settingsFile.isEmpty()
        && !applyStoredBlocks(doc, shown.blocks, args.settingsFile, shown.blockProblems, error))
        return std::nullopt;
    shown.model.setUpDimensions(doc);
    shown.flex.reset(doc, shown.blocks);
    if (args.hasSelect && !applySelectSpec(doc, shown.model, args.selectSpec, args.isSwedish, error))
        return std::nullopt;
    if (args.hasFlex && !applyFlexSpec(doc, shown.model, args.flexSpec, args.isSwedish, error))
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
    shown.sheet = kel::showSelection(doc, shown.blocks, shown.model, shown.flex, args.order, random);
    if (!shown.sheet.outcome.done()) {
        const Refusal &refusal = shown.sheet.outcome.refusal();
        shown.refusal = RefusalWords{refusalToken(refusal.code), showRefusalMessage(doc, refusal, args.isSwedish)};
    }
    return shown;
}

} // namespace kel::cli
