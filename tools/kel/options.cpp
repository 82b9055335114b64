// SPDX-License-Identifier: GPL-3.0-or-later
#include "options.h"

#include <algorithm>

namespace kel::cli {

namespace {

// The selection options: every command that applies a selection uses them.
const std::vector<OptionSpec> Selection{
    {"--select", "SPEC"}, {"--flex", "OPTS"}, {"--flex-current", nullptr}, {"--settings", "INI"}, {"--lang", "en|sv"}};
// Only what shows rows uses their order.
const std::vector<OptionSpec> RowOrder{{"--order", "0|1|2"}, {"--seed", "N"}, {"--max-rows", "N"}};
const std::vector<OptionSpec> Locale{{"--locale", "NAME"}};
const std::vector<OptionSpec> GraphLook{{"--reversed", nullptr}, {"--short-names", nullptr}};
const std::vector<OptionSpec> IndexGraphLook{{"--main", nullptr},
                                             {"--questions", nullptr},
                                             {"--split", "Q"},
                                             {"--empty-splits", nullptr},
                                             {"--lines", "MASK"},
                                             {"--explain", nullptr},
                                             {"--horizontal", nullptr},
                                             {"--no-vertical-labels", nullptr},
                                             {"--no-data-labels", nullptr}};

std::vector<OptionSpec> join(std::initializer_list<std::vector<OptionSpec>> lists)
{
    std::vector<OptionSpec> all;
    for (const std::vector<OptionSpec> &l : lists)
        all.insert(all.end(), l.begin(), l.end());
    return all;
}

const char *const GraphKinds[] = {"histogram", "fraction", "ranking", "distribution", "total-index", "block-index"};

bool isGraphKind(const QString &word)
{
    return std::any_of(std::begin(GraphKinds), std::end(GraphKinds),
                       [&](const char *k) { return word == QLatin1String(k); });
}

} // namespace

const std::vector<CommandPart> &commandParts()
{
    static const std::vector<CommandPart> parts{
        {"check", "FILE", "", {{"--lang", "en|sv"}}},
        {"dump", "FILE", "", {}},
        {"batch", "FILE", "< COMMANDS", {{"--lang", "en|sv"}}},
        {"select", "FILE", "", join({Selection, RowOrder})},
        {"indexes", "FILE", "",
         join({Selection,
               Locale,
               {{"--total", nullptr},
                {"--category", "Q"},
                {"--counts", nullptr},
                {"--items", "total,blocks,subblocks,questions,userblocks"},
                {"--full-text", nullptr},
                {"--columns", nullptr}}})},
        {"graph", "FILE", "KIND [KIND OPTIONS]", join({Selection, Locale, GraphLook})},
        {"graph histogram", "", "", {{"--block", "B"}, {"--question", "Q"}, {"--split", "S"}}},
        {"graph fraction", "", "", {{"--block", "B"}, {"--question", "Q"}, {"--split", "S"}}},
        {"graph ranking", "", "", {{"--block", "B"}, {"--question", "Q"}, {"--unsorted", nullptr}}},
        {"graph distribution",
         "",
         "",
         {{"--category", "C"},
          {"--pie", nullptr},
          {"--group", "C2"},
          {"--percent", nullptr},
          {"--3d", nullptr},
          {"--horizontal", nullptr},
          {"--vertical-labels", nullptr}}},
        {"graph total-index", "", "", join({{{"--blocks", nullptr}}, IndexGraphLook})},
        {"graph block-index", "", "", join({{{"--block", "B"}}, IndexGraphLook})},
        {"render overview", "FILE", "-o OUT",
         join({Selection, Locale, RowOrder, {{"--mode", "1|2|3"}, {"--headers-only", nullptr}}}), true},
        {"render graph", "FILE", "KIND [KIND OPTIONS] -o OUT", join({Selection, Locale, GraphLook}), true},
        {"report", "FILE", "-o OUT",
         join({Selection,
               Locale,
               {{"--recipe", "R"},
                {"--by", "CATEGORY"},
                {"--within", nullptr},
                {"--sections", "LIST"},
                {"--blocks", "LIST"},
                {"--split", "Q"},
                {"--date", "TEXT"}}}),
         true},
    };
    return parts;
}

const CommandPart *findPart(const QString &part)
{
    for (const CommandPart &p : commandParts())
        if (part == QLatin1String(p.part))
            return &p;
    return nullptr;
}

bool isDrawingCommand(const QString &command)
{
    for (const CommandPart &p : commandParts())
        if (p.drawn && QString::fromLatin1(p.part).section(QLatin1Char(' '), 0, 0) == command)
            return true;
    return false;
}

QString optionsSynopsis(const CommandPart &part)
{
    QStringList words;
    for (const OptionSpec &o : part.options)
        words << (o.value ? QStringLiteral("[%1 %2]").arg(QLatin1String(o.name), QLatin1String(o.value))
                          : QStringLiteral("[%1]").arg(QLatin1String(o.name)));
    return words.join(QLatin1Char(' '));
}

QString usageLine(const CommandPart &p)
{
    const QString part = QLatin1String(p.part);
    const QString command = part.section(QLatin1Char(' '), 0, 0), keyword = part.section(QLatin1Char(' '), 1);
    QStringList words;
    if (command == QLatin1String("graph") && !keyword.isEmpty()) {
        words << QStringLiteral("    KIND") << keyword;
    } else {
        words << QStringLiteral("  kel") << command << QLatin1String(p.lead);
        if (!keyword.isEmpty())
            words << keyword;
    }
    words << optionsSynopsis(p) << QLatin1String(p.trail);
    words.removeAll(QString());
    return words.join(QLatin1Char(' ')) + QLatin1Char('\n');
}

QString usageOf(const QString &command)
{
    QString text = QStringLiteral("usage:\n");
    for (const CommandPart &p : commandParts())
        if (QString::fromLatin1(p.part).section(QLatin1Char(' '), 0, 0) == command)
            text += usageLine(p);
    return text;
}

QString checkOptions(const QString &command, const QStringList &args)
{
    // The parts in force: render starts as both of its forms until its
    // keyword says which; graph's kind adds the kind's options.
    std::vector<const CommandPart *> parts;
    if (command == QLatin1String("render"))
        parts = {findPart(QStringLiteral("render overview")), findPart(QStringLiteral("render graph"))};
    else if (const CommandPart *p = findPart(command))
        parts = {p};
    else
        return QString();
    const bool render = command == QLatin1String("render");
    const bool drawn = isDrawingCommand(command);
    bool graph = command == QLatin1String("graph");
    bool kindSeen = false;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &a = args[i];
        if (drawn && a == QLatin1String("-o")) {
            ++i;
            continue;
        }
        if (!a.startsWith(QLatin1String("--"))) {
            // A keyword picks the part; other words are the parser's.
            if (render && !graph && a == QLatin1String("overview")) {
                parts = {findPart(QStringLiteral("render overview"))};
            } else if (render && !graph && a == QLatin1String("graph")) {
                parts = {findPart(QStringLiteral("render graph"))};
                graph = true;
            } else if (graph && !kindSeen && isGraphKind(a)) {
                parts = {findPart(QStringLiteral("graph ") + a)};
                kindSeen = true;
            }
            continue;
        }
        const OptionSpec *found = nullptr;
        for (const CommandPart *p : parts)
            for (const OptionSpec &o : p->options)
                if (a == QLatin1String(o.name))
                    found = &o;
        if (!found) {
            QStringList taken;
            for (const CommandPart *p : parts)
                for (const OptionSpec &o : p->options)
                    if (!taken.contains(QLatin1String(o.name)))
                        taken << QLatin1String(o.name);
            QString where = QLatin1String(parts.front()->part);
            if (parts.size() > 1)
                where = command;
            return QStringLiteral("'%1' is not an option of %2; it takes %3")
                .arg(a, where, taken.isEmpty() ? QStringLiteral("none") : taken.join(QStringLiteral(", ")));
        }
        if (found->value)
            ++i;
    }
    return QString();
}

} // namespace kel::cli
