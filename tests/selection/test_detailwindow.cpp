// SPDX-License-Identifier: GPL-3.0-or-later
// The detail-information window: which rows show, what the document puts in
// them, and that the window follows its content.
#include "gui/selection/detailwindow.h"

#include "surveys.h"

#include <QLabel>

#include <gtest/gtest.h>

using namespace kel;

namespace {

std::vector<int> shownRows(const DetailWindow &w)
{
    std::vector<int> rows;
    for (int r = 0; r < DetailWindow::RowCount; ++r) {
        const auto *label = w.findChild<QLabel *>(QStringLiteral("lblIndexLabel%1").arg(r));
        const auto *value = w.findChild<QLabel *>(QStringLiteral("lblIndex%1").arg(r));
        const auto *total = w.findChild<QLabel *>(QStringLiteral("lblIndexTotal%1").arg(r));
        // The value cells follow the label, whatever state they had before.
        EXPECT_EQ(label->isVisibleTo(&w), value->isVisibleTo(&w)) << "row " << r;
        EXPECT_EQ(label->isVisibleTo(&w), total->isVisibleTo(&w)) << "row " << r;
        if (label->isVisibleTo(&w))
            rows.push_back(r);
    }
    return rows;
}

TEST(DetailWindow, RowIsShownExactlyWhenItsLabelIsNotEmpty)
{
    struct Case {
        std::array<const char *, 5> labels;
        std::vector<int> shown;
    };
    const Case cases[] = {
        {{"", "", "", "", ""}, {}},
        {{"R", "Q", "", "B", "T"}, {0, 1, 3, 4}},
        {{"R", "Q", "S", "B", "T"}, {0, 1, 2, 3, 4}},
        {{"", "", "", "", "T"}, {4}},
        {{" ", "", "", "", ""}, {0}}, // a blank is a label
    };
    DetailWindow w(false);
    for (const Case &c : cases) {
        for (int r = 0; r < 5; ++r) {
            w.setIndexValue(r, false, QStringLiteral("1.0"));
            w.setIndexValue(r, true, QStringLiteral("2.0"));
            w.setIndexText(r, QString::fromUtf8(c.labels[std::size_t(r)]));
        }
        w.updateLayout();
        EXPECT_EQ(shownRows(w), c.shown);
    }
}

TEST(DetailWindow, DocumentSetsRowLabelsAndHeaders)
{
    DetailWindow w(false);

    auto plain = test::navigatorSurvey({.subBlockLabel = false});
    ASSERT_TRUE(plain);
    w.setIndexValue(1, false, QStringLiteral("stale"));
    w.setUpForDocument(*plain);
    EXPECT_EQ(shownRows(w), (std::vector<int>{0, 1, 3, 4}));
    EXPECT_EQ(w.indexText(4), QStringLiteral("All questions"));
    EXPECT_TRUE(w.indexValue(1, false).isEmpty()) << "values of the previous document are cleared";
    EXPECT_EQ(w.headerValue(0), QStringLiteral(" "));
    EXPECT_EQ(w.headerValue(1), QString()) << "no sub-block line without a sub-block label";
    EXPECT_EQ(w.headerValue(2), QStringLiteral(" "));

    auto withSub = test::navigatorSurvey({.subBlockLabel = true});
    w.setUpForDocument(*withSub);
    EXPECT_EQ(shownRows(w), (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_EQ(w.headerValue(1), QStringLiteral(" "));

    // Without indexes there is nothing to show, whatever labels the file has.
    auto noIndexes = test::navigatorSurvey({.pointsScale = 0});
    w.setUpForDocument(*noIndexes);
    EXPECT_TRUE(shownRows(w).empty());

    w.setUpForDocument(*withSub);
    w.clearAll();
    EXPECT_TRUE(shownRows(w).empty());
    EXPECT_TRUE(w.headerValue(0).isEmpty());
}

TEST(DetailWindow, SizeFollowsContent)
{
    DetailWindow w(false);
    w.setIndexText(4, QStringLiteral("Total"));
    w.updateLayout();
    const QSize one = w.contentSize();
    for (int r = 0; r < 4; ++r)
        w.setIndexText(r, QStringLiteral("Row"));
    w.updateLayout();
    const QSize five = w.contentSize();
    EXPECT_GT(five.height(), one.height());
    // Each row is at least 240 twips high.
    EXPECT_GE(five.height() - one.height(), 4 * w.twipsToPixels(240));

    w.setIndexText(0, QStringLiteral("A much, much longer label for the respondent row"));
    w.updateLayout();
    EXPECT_GT(w.contentSize().width(), five.width());
    EXPECT_GE(w.widget()->minimumWidth(), w.contentSize().width());

    for (int r = 0; r < 5; ++r)
        w.setIndexText(r, QString());
    w.updateLayout();
    EXPECT_LT(w.contentSize().height(), one.height());
}

} // namespace
