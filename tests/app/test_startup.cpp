// SPDX-License-Identifier: GPL-3.0-or-later
#include "texts/language.h"
#include "engine/settings/recentfiles.h"
#include "gui/shell/startup.h"

#include <gtest/gtest.h>

using namespace kel;

TEST(CommandLine, SplitsLikeTheViewerAlwaysHas)
{
    struct Case {
        QString line;
        QStringList expected;
    };
    const Case cases[] = {
        {QStringLiteral("\"C:\\My Surveys\\staff 2024.kel\" /autostart"),
         {QStringLiteral("C:\\My Surveys\\staff 2024.kel"), QStringLiteral("/autostart")}},
        {QStringLiteral("  a   b\tc  "), {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}},
        {QStringLiteral("x\"a b\"y z"), {QStringLiteral("xa by"), QStringLiteral("z")}},
        {QStringLiteral("\"say \"\"hi\"\"\""), {QStringLiteral("say \"hi\"")}},
        {QStringLiteral("\"\" b"), {QString(), QStringLiteral("b")}},
        {QStringLiteral("\"tab\tinside\""), {QStringLiteral("tab\tinside")}},
        {QStringLiteral("   "), {}},
        {QStringLiteral("\"unterminated arg"), {QStringLiteral("unterminated arg")}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(splitCommandLine(c.line), c.expected) << c.line.toStdString();
}

TEST(CommandLine, QuotedPathWithLowerCaseSwitchStartsWithoutSplash)
{
    const StartupArguments a =
        parseStartupArguments(splitCommandLine(QStringLiteral("\"/home/eva/my surveys/a.kel\" /autostart")));
    ASSERT_EQ(a.commandArguments.size(), 2);
    EXPECT_EQ(a.commandArguments.at(0), QStringLiteral("/home/eva/my surveys/a.kel"));
    EXPECT_TRUE(a.autoStart);
    EXPECT_FALSE(hasAutoStart({QStringLiteral("/AutoStartX"), QStringLiteral("AutoStart")}));
    EXPECT_TRUE(hasAutoStart({QStringLiteral("x"), QStringLiteral("/AUTOSTART")}));
}

TEST(CommandLine, LanguageOptionIsTakenOut)
{
    struct Case {
        QStringList arguments;
        QStringList commandArguments;
        QString language;
    };
    const Case cases[] = {
        {{QStringLiteral("--lang"), QStringLiteral("sv"), QStringLiteral("a.kel")}, {QStringLiteral("a.kel")},
         QStringLiteral("sv")},
        {{QStringLiteral("a.kel"), QStringLiteral("--lang=en")}, {QStringLiteral("a.kel")}, QStringLiteral("en")},
        {{QStringLiteral("a.kel"), QStringLiteral("--lang")}, {QStringLiteral("a.kel")}, QString()},
        {{QStringLiteral("b.kel")}, {QStringLiteral("b.kel")}, QString()},
    };
    for (const Case &c : cases) {
        const StartupArguments a = parseStartupArguments(c.arguments);
        EXPECT_EQ(a.commandArguments, c.commandArguments);
        EXPECT_EQ(a.languageOption, c.language);
    }
}

TEST(Language, SwedishForAnySwedishLocaleUnlessOverridden)
{
    struct Case {
        const char *locale;
        const char *environment;
        const char *option;
        bool swedish;
    };
    const Case cases[] = {
        {"sv_SE", "", "", true},      {"sv_FI", "", "", true},      {"nb_NO", "", "", false},
        {"da_DK", "", "", false},     {"en_US", "", "", false},     {"en_US", "sv", "", true},
        {"sv_SE", "en", "", false},   {"en_US", "sv", "en", false}, {"en_US", "", "SV", true},
        {"sv_SE", "de", "", true},    {"en_GB", "sv_SE.UTF-8", "", true},
        {"en_GB", "svenska", "", false},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(chooseIsSwedish(QLocale(QString::fromLatin1(c.locale)), QString::fromLatin1(c.environment),
                                  QString::fromLatin1(c.option)),
                  c.swedish)
            << c.locale << " env=" << c.environment << " opt=" << c.option;
    }
}

TEST(Zlib, OnlyTheFirstCharacterOfTheVersionMatters)
{
    EXPECT_EQ(checkZlibVersion("1.2.13"), ZlibCheck::Ok);
    EXPECT_EQ(checkZlibVersion("1.3.1"), ZlibCheck::Ok);
    EXPECT_EQ(checkZlibVersion("2.0.0"), ZlibCheck::Incompatible);
    EXPECT_EQ(checkZlibVersion(""), ZlibCheck::Missing);
    EXPECT_EQ(checkZlibVersion(nullptr), ZlibCheck::Missing);
    EXPECT_TRUE(zlibMessage(ZlibCheck::Incompatible, QStringLiteral("2.0.0"), false).contains(QStringLiteral("2.0.0")));
    EXPECT_TRUE(zlibMessage(ZlibCheck::Ok, QStringLiteral("1.2.13"), false).isEmpty());
}

TEST(RecentFiles, MostRecentFirstWithoutDuplicates)
{
    struct Case {
        QStringList before;
        QString opened;
        QStringList after;
    };
    const QString a = QStringLiteral("/s/a.kel"), b = QStringLiteral("/s/b.kel"), c = QStringLiteral("/s/c.kel"),
                  d = QStringLiteral("/s/d.kel"), e = QStringLiteral("/s/e.kel"), f = QStringLiteral("/s/f.kel");
    const Case cases[] = {
        {{}, a, {a}},
        {{a}, a, {a}},
        {{b, a}, a, {a, b}},
        {{a, b, c, d, e}, f, {f, a, b, c, d}},         // the sixth pushes out the oldest
        {{a, b, c, d, e}, c, {c, a, b, d, e}},         // from the middle: the rest keep their order
        {{a, b, c}, QStringLiteral("/S/C.KEL"), {QStringLiteral("/S/C.KEL"), a, b}}, // case-insensitive
        {{a, b}, QString(), {a, b}},
    };
    for (const Case &t : cases)
        EXPECT_EQ(recordRecentFile(t.before, t.opened), t.after) << t.opened.toStdString();
}

TEST(RecentFiles, PathsSplitAtTheLastSeparator)
{
    struct Case {
        QString path, folder, name;
    };
    const Case cases[] = {
        {QStringLiteral("/home/eva/a.kel"), QStringLiteral("/home/eva"), QStringLiteral("a.kel")},
        {QStringLiteral("C:\\Data\\b.kel"), QStringLiteral("C:\\Data"), QStringLiteral("b.kel")},
        {QStringLiteral("c.kel"), QString(), QStringLiteral("c.kel")},
        {QStringLiteral("/d.kel"), QStringLiteral("/"), QStringLiteral("d.kel")},
    };
    for (const Case &c : cases) {
        const PathParts p = splitDocumentPath(c.path);
        EXPECT_EQ(p.folder, c.folder) << c.path.toStdString();
        EXPECT_EQ(p.name, c.name) << c.path.toStdString();
    }
}
