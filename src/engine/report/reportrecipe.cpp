// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/report/reportrecipe.h"

#include <QStringList>

#include <algorithm>

namespace kel {

namespace {

struct UnitsName {
    ReportUnits units;
    const char *key;
};
constexpr UnitsName UnitsNames[] = {
    {ReportUnits::Current, "current"},
    {ReportUnits::ByCategory, "by-category"},
    {ReportUnits::List, "list"},
};

QString numberList(const std::vector<qint32> &numbers)
{
    QStringList parts;
    for (qint32 n : numbers)
        parts << QString::number(n);
    return parts.join(QLatin1Char(','));
}

bool parseNumberList(const QString &text, std::vector<qint32> &numbers)
{
    numbers.clear();
    for (const QString &part : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        bool ok = false;
        const qint32 n = part.trimmed().toInt(&ok);
        if (!ok || n < 0)
            return false;
        numbers.push_back(n);
    }
    return true;
}

bool parseBool(const QString &text, bool &value)
{
    if (text == QLatin1String("yes") || text == QLatin1String("true") || text == QLatin1String("1"))
        value = true;
    else if (text == QLatin1String("no") || text == QLatin1String("false") || text == QLatin1String("0"))
        value = false;
    else
        return false;
    return true;
}

} // namespace

bool ReportRecipe::has(ReportSection section) const
{
    return std::find(sections.begin(), sections.end(), section) != sections.end();
}

void ReportRecipe::add(ReportSection section)
{
    if (has(section))
        return;
    sections.push_back(section);
    std::sort(sections.begin(), sections.end());
}

std::optional<ReportSection> reportSectionForKey(const QString &key)
{
    for (const ReportSectionName &s : ReportSectionNames)
        if (key == QLatin1String(s.key))
            return s.section;
    return std::nullopt;
}

QString reportSectionKey(ReportSection section)
{
    for (const ReportSectionName &s : ReportSectionNames)
        if (s.section == section)
            return QLatin1String(s.key);
    return {};
}

bool parseReportSections(const QString &list, ReportRecipe &recipe, RecipeError &error)
{
    for (const QString &part : list.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const std::optional<ReportSection> section = reportSectionForKey(part.trimmed());
        if (!section) {
            error = RecipeError{RecipeProblem::UnknownSection, 0, part.trimmed(), QString()};
            return false;
        }
        recipe.add(*section);
    }
    return true;
}

QString writeReportRecipe(const ReportRecipe &recipe)
{
    QString text = QStringLiteral("# KEL Viewer report recipe\n[Report]\n");
    for (const UnitsName &u : UnitsNames)
        if (u.units == recipe.units)
            text += QStringLiteral("units = %1\n").arg(QLatin1String(u.key));
    if (recipe.units == ReportUnits::ByCategory) {
        text += QStringLiteral("category = %1\n").arg(recipe.category);
        text += QStringLiteral("within-current = %1\n").arg(QLatin1String(recipe.withinCurrent ? "yes" : "no"));
    }
    for (const QString &s : recipe.selections)
        text += QStringLiteral("selection = %1\n").arg(s);
    QStringList sections;
    for (ReportSection s : recipe.sections)
        sections << reportSectionKey(s);
    text += QStringLiteral("sections = %1\n").arg(sections.join(QLatin1Char(',')));
    if (!recipe.blocks.empty())
        text += QStringLiteral("blocks = %1\n").arg(numberList(recipe.blocks));
    if (recipe.split >= 0)
        text += QStringLiteral("split = %1\n").arg(recipe.split);
    if (!recipe.distributions.empty())
        text += QStringLiteral("distributions = %1\n").arg(numberList(recipe.distributions));
    if (!recipe.date.isEmpty())
        text += QStringLiteral("date = %1\n").arg(recipe.date);
    return text;
}

std::optional<ReportRecipe> readReportRecipe(const QString &text, RecipeError &error)
{
    ReportRecipe recipe;
    bool sawSection = false;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (qsizetype n = 0; n < lines.size(); ++n) {
        const QString line = lines[n].trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')) || line.startsWith(QLatin1Char(';')))
            continue;
        const auto fail = [&](RecipeProblem problem, const QString &word, const QString &key = QString()) {
            error = RecipeError{problem, n + 1, word, key};
            return std::nullopt;
        };
        if (line.startsWith(QLatin1Char('['))) {
            if (line != QLatin1String("[Report]"))
                return fail(RecipeProblem::UnknownSectionHeader, line);
            sawSection = true;
            continue;
        }
        const qsizetype eq = line.indexOf(QLatin1Char('='));
        if (eq < 0)
            return fail(RecipeProblem::NotKeyValue, line);
        const QString key = line.left(eq).trimmed();
        const QString value = line.mid(eq + 1).trimmed();
        bool ok = true;
        if (key == QLatin1String("units")) {
            ok = false;
            for (const UnitsName &u : UnitsNames) {
                if (value == QLatin1String(u.key)) {
                    recipe.units = u.units;
                    ok = true;
                }
            }
        } else if (key == QLatin1String("category")) {
            recipe.category = value.toInt(&ok);
            ok = ok && recipe.category >= 0;
        } else if (key == QLatin1String("within-current")) {
            ok = parseBool(value, recipe.withinCurrent);
        } else if (key == QLatin1String("selection")) {
            recipe.selections.push_back(value);
        } else if (key == QLatin1String("sections")) {
            RecipeError why;
            if (!parseReportSections(value, recipe, why))
                return fail(why.problem, why.word);
        } else if (key == QLatin1String("blocks")) {
            ok = parseNumberList(value, recipe.blocks);
        } else if (key == QLatin1String("split")) {
            recipe.split = value.toInt(&ok);
            ok = ok && recipe.split >= -1;
        } else if (key == QLatin1String("distributions")) {
            ok = parseNumberList(value, recipe.distributions);
        } else if (key == QLatin1String("date")) {
            recipe.date = value;
        } else {
            return fail(RecipeProblem::UnknownKey, key);
        }
        if (!ok)
            return fail(RecipeProblem::BadValue, value, key);
    }
    if (!sawSection) {
        error = RecipeError{RecipeProblem::NoReportSection, 0, QString(), QString()};
        return std::nullopt;
    }
    if (recipe.units == ReportUnits::ByCategory && recipe.category < 0) {
        error = RecipeError{RecipeProblem::ByCategoryNeedsCategory, 0, QString(), QString()};
        return std::nullopt;
    }
    if (recipe.units == ReportUnits::List && recipe.selections.empty()) {
        error = RecipeError{RecipeProblem::ListNeedsSelection, 0, QString(), QString()};
        return std::nullopt;
    }
    return recipe;
}

} // namespace kel
