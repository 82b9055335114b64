// SPDX-License-Identifier: GPL-3.0-or-later
#include "texts/language.h"
#include "engine/settings/recentfiles.h"
#include "gui/shell/startup.h"

#include <gtest/gtest.h>

using namespace kel;

TEST(CommandLine, SplitsLikeTheViewerAlwaysHasAndTakesItsOptionsOut)
{
    const std::pair<const char *, QStringList> cases[] = {
        {"\"C:\\My Surveys\\staff 2024.kel\" /autostart",
         {QStringLiteral("C:\\My Surveys\\staff 2024.kel"), QStringLiteral("/autostart")}},
        {"  a   b\tc  ", {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}},
        {"x\"a b\"y z", {QStringLiteral("xa by"), QStringLiteral("z")}},
        {"\"say \"\"hi\"\"\"", {QStringLiteral("say \"hi\"")}},
        {"\"\" b", {QString(), QStringLiteral("b")}},
        {"   ", {}},
        {"\"unterminated arg", {QStringLiteral("unterminated arg")}},
    };
    for (const auto &[line, expected] : cases)
        EXPECT_EQ(splitCommandLine(QString::fromUtf8(line)), expected) << line;

    EXPECT_TRUE(parseStartupArguments({QStringLiteral("a.kel"), QStringLiteral("/AUTOSTART")}).autoStart);
    EXPECT_FALSE(hasAutoStart({QStringLiteral("/AutoStartX"), QStringLiteral("AutoStart")}));
    const std::tuple<QStringList, QString> languages[] = {
        {{QStringLiteral("--lang"), QStringLiteral("sv"), QStringLiteral("a.kel")}, QStringLiteral("sv")},
        {{QStringLiteral("a.kel"), QStringLiteral("--lang=en")}, QStringLiteral("en")},
        {{QStringLiteral("a.kel"), QStringLiteral("--lang")}, QString()},
    };
    for (const auto &[arguments, language] : languages) {
        const StartupArguments a = parseStartupArguments(arguments);
        EXPECT_EQ(a.commandArguments, QStringList{QStringLiteral("a.kel")});
        EXPECT_EQ(a.languageOption, language);
    }
}

// Several files from a file manager: the first stays, each further one gets
// a viewer of its own in the same language, and none is dropped.
TEST(Startup, FurtherFilesEachGetAViewer)
{
    const QString a = QStringLiteral("a.kel"), b = QStringLiteral("b.kel"), c = QStringLiteral("c d.kel");
    const QString autoStart = QStringLiteral("/AutoStart"), others = QStringLiteral("--opened-with-others");
    const StartupArguments three = parseStartupArguments({a, b, QStringLiteral("--lang=sv"), c});
    EXPECT_EQ(three.commandArguments.value(0), a);
    EXPECT_EQ(furtherViewerLaunches(three, true),
              (QList<QStringList>{{b, QStringLiteral("--lang"), QStringLiteral("sv"), autoStart, others},
                                  {c, QStringLiteral("--lang"), QStringLiteral("sv"), autoStart, others}}));
    EXPECT_EQ(furtherViewerLaunches(parseStartupArguments({a, QStringLiteral("/autostart"), b}), false),
              (QList<QStringList>{{b, QStringLiteral("--lang"), QStringLiteral("en"), autoStart, others}}));
    EXPECT_TRUE(furtherViewerLaunches(parseStartupArguments({a}), false).isEmpty());

    // A started copy knows it was asked for, and does not pass the option on
    // as a file.
    const StartupArguments started =
        parseStartupArguments({b, QStringLiteral("--lang"), QStringLiteral("sv"), autoStart, others});
    EXPECT_TRUE(started.openedWithOthers);
    EXPECT_TRUE(started.autoStart);
    EXPECT_TRUE(furtherViewerLaunches(started, true).isEmpty());
    EXPECT_FALSE(parseStartupArguments({a, b}).openedWithOthers);
}

TEST(Language, SwedishForAnySwedishLocaleUnlessOverridden)
{
    const struct {
        const char *locale, *environment, *option;
        bool swedish;
    } cases[] = {
        {"sv_FI", "", "", true},    {"nb_NO", "", "", false},           {"en_US", "sv", "", true},
        {"sv_SE", "en", "", false}, {"en_US", "sv", "en", false},       {"en_US", "", "SV", true},
        {"sv_SE", "de", "", true},  {"en_GB", "sv_SE.UTF-8", "", true}, {"en_GB", "svenska", "", false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(chooseIsSwedish(QLocale(QString::fromLatin1(c.locale)), QString::fromLatin1(c.environment),
                                  QString::fromLatin1(c.option)),
                  c.swedish)
            << c.locale << " env=" << c.environment << " opt=" << c.option;
}

TEST(RecentFiles, MostRecentFirstWithoutDuplicatesAndPathsSplitAtTheLastSeparator)
{
    const QString a = QStringLiteral("/s/a.kel"), b = QStringLiteral("/s/b.kel"), c = QStringLiteral("/s/c.kel"),
                  d = QStringLiteral("/s/d.kel"), e = QStringLiteral("/s/e.kel"), f = QStringLiteral("/s/f.kel");
    const std::tuple<QStringList, QString, QStringList> cases[] = {
        {{b, a}, a, {a, b}},
        {{a, b, c, d, e}, f, {f, a, b, c, d}}, // the sixth pushes out the oldest
        {{a, b, c, d, e}, c, {c, a, b, d, e}}, // from the middle: the rest keep their order
        {{a, b, c}, QStringLiteral("/S/C.KEL"), {QStringLiteral("/S/C.KEL"), a, b}}, // case-insensitive
        {{a, b}, QString(), {a, b}},
    };
    for (const auto &[before, opened, after] : cases)
        EXPECT_EQ(recordRecentFile(before, opened), after) << opened.toStdString();

    const std::tuple<QString, QString, QString> paths[] = {
        {QStringLiteral("C:\\Data\\b.kel"), QStringLiteral("C:\\Data"), QStringLiteral("b.kel")},
        {QStringLiteral("c.kel"), QString(), QStringLiteral("c.kel")},
        {QStringLiteral("/d.kel"), QStringLiteral("/"), QStringLiteral("d.kel")},
    };
    for (const auto &[path, folder, name] : paths) {
        EXPECT_EQ(splitDocumentPath(path).folder, folder) << path.toStdString();
        EXPECT_EQ(splitDocumentPath(path).name, name) << path.toStdString();
    }
}
