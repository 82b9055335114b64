// SPDX-License-Identifier: GPL-3.0-or-later
// A report as content: units of headings, texts, tables and graph
// descriptions, every privacy and permission decision already taken. The
// writers only lay it out; they never see a figure that may not be shown.
#pragma once

#include "engine/document/document.h"
#include "engine/graphs/basicgraph.h"
#include "engine/graphs/chartdescription.h"
#include "engine/overview/subsheet.h"
#include "engine/report/reportrecipe.h"

#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

namespace kel {

/// The words a report is written in, chosen by the texts layer so that the
/// engine stays free of languages.
struct ReportWords {
    QString contents;  ///< the contents page's heading
    QString page;      ///< "Page %1 of %2"
    QString selection; ///< title page labels
    QString respondents;
    QString comparedWith;
    QString date;
    QString indexTable; ///< section headings
    QString overview;
    QString comments;
    QString refused; ///< "Not shown" beside a refused unit in the contents
    QString blocked; ///< Show's refusals
    QString flexTotalBlocked;
    QString noAnswers;
    QString tooSmall;
    QString splitNotAllowed; ///< a split graph's own refusal
    QString blockWithoutQuestions;
    QString picturesForbidden; ///< sections left out by the document's permissions
    QString tablesForbidden;
    QString commentsForbidden;
    QString commentsNotShown; ///< the overview shows no answer rows
    QString noIndexes;
    QString graphTooBig; ///< a graph that does not fit its window is not drawn
};

struct ReportItem {
    enum class Kind {
        Heading,    ///< a section's heading
        SubHeading, ///< a heading inside a section
        Text,       ///< a paragraph
        Labelled,   ///< a label and its value, on the title page
        Table,      ///< rows of cells, the first row the header
        Notice,     ///< something left out, and why
        BasicGraph,
        Chart,
        Overview,
        PageBreak,
    };
    Kind kind = Kind::Text;
    QString text;  ///< Heading, Text, Notice; the label of Labelled
    QString value; ///< Labelled
    std::vector<QStringList> table;
    std::shared_ptr<const BasicGraphDescription> basic;
    std::shared_ptr<const ChartDescription> chart;
};

struct ReportUnit {
    QString name;
    /// Set when Show refuses the unit: its only content is this text.
    QString refusal;
    std::vector<ReportItem> items;
    /// For the overview picture: the document the report was built from
    /// (it outlives the report) and the sheet.
    const Document *document = nullptr;
    std::shared_ptr<const SubSheet> sheet;

    bool isRefused() const { return !refusal.isEmpty(); }
};

struct Report {
    QString title;
    ReportWords words;
    std::vector<ReportUnit> units;
};

} // namespace kel
