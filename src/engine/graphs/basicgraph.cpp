// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/graphs/basicgraph.h"

#include "engine/overview/subsheet.h"

#include "engine/document/documentlanguage.h"

#include "engine/selection/showdecision.h"

#include "engine/indexes/columnindex.h"

#include <algorithm>

namespace kel {

namespace {

// One answer scale: a run of alternatives that one or more questions share.
struct Scale {
    qint32 first = 0;
    qint32 count = 0;
    std::vector<qint32> order; // shown alternatives (0-based within the run), display order
    qint32 firstLegend = 0;
};

// Counts of one group: per alternative of its scale, and all its answers.
struct GroupCounts {
    std::vector<qint64> count;
    qint64 answered = 0;
};

bool validQuestion(const Document &doc, qint32 q)
{
    if (q < 0 || std::size_t(q) >= doc.questions.size() || q >= doc.columnCount())
        return false;
    const Question &question = doc.questions[std::size_t(q)];
    return question.firstAlternative >= 0 && question.alternativeCount >= 0
        && qint64(question.firstAlternative) + question.alternativeCount <= qint64(doc.alternatives.size());
}

// Non-negative sort values first (descending, or ascending when reversed),
// then negative ones in descending order; equal values keep document order.
std::vector<qint32> displayOrder(const Document &doc, qint32 first, qint32 count, qint32 hidden, bool reversed)
{
    std::vector<qint32> order;
    for (qint32 a = hidden; a < count; ++a)
        order.push_back(a);
    auto sortValue = [&](qint32 a) { return doc.alternatives[std::size_t(first + a)].sortValue; };
    std::stable_sort(order.begin(), order.end(), [&](qint32 x, qint32 y) {
        const qint32 vx = sortValue(x);
        const qint32 vy = sortValue(y);
        if ((vx >= 0) != (vy >= 0))
            return vx >= 0;
        if (vx >= 0 && reversed)
            return vx < vy;
        return vx > vy;
    });
    return order;
}

// Adds every row's answer to `question` into counts[answer]; returns the
// number of answers inside 0 .. alternatives-1.
qint64 countColumn(const Document &doc, qint32 question, const std::vector<qint32> &rows, qint32 alternatives,
                   std::vector<qint64> &counts)
{
    qint64 answered = 0;
    const qint32 rowCount = doc.rowCount();
    doc.answers.visitColumn(question, [&](const auto *column) {
        // One counter per possible cell value keeps the loop free of the range
        // test for byte cells, the common case.
        for (qint32 r : rows) {
            if (r < 0 || r >= rowCount)
                continue;
            const qint64 a = column[r];
            if (a >= 0 && a < alternatives) {
                ++counts[std::size_t(a)];
                ++answered;
            }
        }
    });
    return answered;
}

QString formatCount(qint64 value, const QLocale &locale)
{
    return locale.toString(value);
}

} // namespace

qint32 roundedShare(qint64 count, qint64 scale, qint64 total)
{
    if (total <= 0)
        return 0;
    const qint64 numerator = count * scale;
    qint64 quotient = numerator / total;
    qint64 remainder = numerator % total;
    if (remainder < 0) {
        --quotient;
        remainder += total;
    }
    const qint64 twice = 2 * remainder;
    if (twice > total || (twice == total && (quotient & 1) != 0))
        ++quotient;
    return qint32(quotient);
}

QString splitGraphName(const Document &doc, qint32 question, qint32 splitQuestion)
{
    const auto heading = [&](qint32 q) {
        return q >= 0 && std::size_t(q) < doc.questions.size() ? doc.questions[std::size_t(q)].heading : QString();
    };
    return heading(question) + (documentIsSwedish(doc) ? QStringLiteral(" fördelad på ") : QStringLiteral(" split by "))
        + heading(splitQuestion);
}

bool splitAllowed(const Document &doc, qint32 question, const std::vector<qint32> &rows)
{
    return validQuestion(doc, question) && !splitRefused(doc, question, rows);
}

bool splitPermitted(const Document &doc, qint32 question, const BasicGraphSelection &selection)
{
    const auto category = std::find(doc.categories.begin(), doc.categories.end(), question);
    if (category != doc.categories.end() && selection.splitNotAllowed) {
        const std::size_t c = std::size_t(category - doc.categories.begin());
        if (c < selection.splitNotAllowed->size())
            return !(*selection.splitNotAllowed)[c];
    }
    static const std::vector<qint32> noRows;
    return splitAllowed(doc, question, selection.rows ? *selection.rows : noRows);
}

BasicGraphSelection graphSelectionOf(const SubSheet &sheet, const FlexTotal &flex)
{
    BasicGraphSelection selection;
    selection.rows = &sheet.rows;
    selection.splitNotAllowed = &sheet.steps.splitNotAllowed;
    selection.selectionText = sheet.steps.selectionText;
    selection.usedTotalText = flex.text();
    selection.usedTotalSize = flex.rowCount();
    return selection;
}

BasicGraphResult generateBasicGraph(const Document &doc, const BlockCatalogue &catalogue, const FlexTotal &flex,
                                    const BasicGraphRequest &request, const BasicGraphSelection &selection)
{
    BasicGraphDescription d;
    const bool split = request.splitQuestion != -1;
    const std::vector<qint32> noRows;
    const std::vector<qint32> &rows = selection.rows ? *selection.rows : noRows;

    if ((request.kind != HistogramGraph && request.kind != FractionGraph) || request.questions.empty()
        || (split && !validQuestion(doc, request.splitQuestion))
        || (request.block != -1 && !catalogue.blockAt(request.block))) {
        return Refusal{RefusalCode::NoSuchGraph};
    }
    const std::vector<qint32> questions = split ? std::vector<qint32>{request.questions.front()} : request.questions;
    for (qint32 q : questions) {
        if (!validQuestion(doc, q)) {
            return Refusal{RefusalCode::NoSuchGraph};
        }
    }
    if (split && !splitPermitted(doc, request.splitQuestion, selection)) {
        return Refusal{RefusalCode::SplitNotAllowed};
    }

    const DocumentProperties &p = doc.properties;
    const bool swedish = documentIsSwedish(doc);
    const QLocale &locale = selection.locale;
    const qint32 pointsScale = p.pointsScale;
    const bool withIndex = pointsScale >= 1;
    const qint32 hidden = p.firstAlternativeIsNoAnswer ? 1 : 0;              // s0
    const qint32 firstGroup = split && p.firstAlternativeIsNoAnswer ? 1 : 0; // g0

    d.graphKind = request.kind;
    d.valueScale = 1000;
    d.title = request.name;
    d.countAxisText = swedish ? QStringLiteral("Antal") : QStringLiteral("Number");
    d.percentAxisText = swedish ? QStringLiteral("Procent") : QStringLiteral("Percent");
    const bool isBlock = request.block != -1;
    if (request.kind == HistogramGraph)
        d.caption = isBlock ? (swedish ? QStringLiteral("Blockhistogram: ") : QStringLiteral("Block Histogram: "))
                            : (swedish ? QStringLiteral("Frågehistogram: ") : QStringLiteral("Question Histogram: "));
    else
        d.caption = isBlock ? (swedish ? QStringLiteral("Blockgraf: ") : QStringLiteral("Block Graph: "))
                            : (swedish ? QStringLiteral("Frågegraf: ") : QStringLiteral("Question Graph: "));
    d.caption += request.name;

    if (split) {
        const Question &q = doc.questions[std::size_t(questions.front())];
        const Question &s = doc.questions[std::size_t(request.splitQuestion)];
        const QString splitText = s.text.isEmpty() ? s.heading : s.text;
        d.subTitle = splitText.isEmpty() ? q.text : q.text + QStringLiteral(" / ") + splitText;
    }

    // 1. Answer scales, in order of first appearance.
    std::vector<Scale> scales;
    std::vector<qint32> scaleOf;
    for (qint32 q : questions) {
        const Question &question = doc.questions[std::size_t(q)];
        auto it = std::find_if(scales.begin(), scales.end(), [&](const Scale &s) {
            return s.first == question.firstAlternative && s.count == question.alternativeCount;
        });
        if (it == scales.end()) {
            scales.push_back(Scale{question.firstAlternative, question.alternativeCount, {}, 0});
            it = scales.end() - 1;
        }
        scaleOf.push_back(qint32(it - scales.begin()));
    }

    // 6. Display order and one legend run per scale.
    for (Scale &s : scales) {
        s.order = displayOrder(doc, s.first, s.count, hidden, selection.valueOrderReversed);
        s.firstLegend = qint32(d.legends.size());
        for (qint32 a : s.order) {
            const Alternative &alt = doc.alternatives[std::size_t(s.first + a)];
            d.legends.push_back(BasicGraphLegend{alt.text, alt.graphColour, alt.graphAttribute});
        }
    }

    // 3./4. Counting.
    std::vector<GroupCounts> groups;
    std::vector<qint32> groupScale;
    if (!split) {
        groups.resize(questions.size());
        for (std::size_t j = 0; j < questions.size(); ++j) {
            const Scale &s = scales[std::size_t(scaleOf[j])];
            groups[j].count.assign(std::size_t(s.count), 0);
            groups[j].answered = countColumn(doc, questions[j], rows, s.count, groups[j].count);
            groupScale.push_back(scaleOf[j]);
        }
    } else {
        const qint32 q = questions.front();
        const qint32 s = request.splitQuestion;
        const qint32 nq = doc.questions[std::size_t(q)].alternativeCount;
        const qint32 ns = doc.questions[std::size_t(s)].alternativeCount;
        groups.resize(std::size_t(ns));
        for (GroupCounts &g : groups) {
            g.count.assign(std::size_t(nq), 0);
            groupScale.push_back(0);
        }
        const qint32 rowCount = doc.rowCount();
        for (qint32 r : rows) {
            if (r < 0 || r >= rowCount)
                continue;
            const qint32 k = doc.getData(r, s);
            if (k < 0 || k >= ns)
                continue;
            const qint32 a = doc.getData(r, q);
            if (a < 0 || a >= nq)
                continue;
            ++groups[std::size_t(k)].count[std::size_t(a)];
            ++groups[std::size_t(k)].answered;
        }
    }

    // 5. Group indexes, and the sums behind the total.
    std::vector<double> groupIndex(groups.size(), -1.0);
    qint64 sumS = 0;
    qint64 sumN = 0;
    if (withIndex) {
        for (std::size_t g = 0; g < groups.size(); ++g) {
            const Scale &s = scales[std::size_t(groupScale[g])];
            qint64 S = 0;
            qint64 N = 0;
            for (qint32 a = 0; a < s.count; ++a) {
                const qint32 points = doc.alternatives[std::size_t(s.first + a)].points;
                if (points == -1)
                    continue;
                S += groups[g].count[std::size_t(a)] * points;
                N += groups[g].count[std::size_t(a)];
            }
            if (N >= 1) {
                groupIndex[g] = double(S) / double(N) / double(pointsScale);
                if (qint32(g) >= firstGroup) {
                    sumS += S;
                    sumN += N;
                }
            }
        }
    }

    // 7. Groups and bars, with their labels.
    const qint32 decimals = p.indexDecimals;
    for (std::size_t g = std::size_t(firstGroup); g < groups.size(); ++g) {
        const Scale &s = scales[std::size_t(groupScale[g])];
        const GroupCounts &c = groups[g];
        const bool anyShown =
            std::any_of(s.order.begin(), s.order.end(), [&](qint32 a) { return c.count[std::size_t(a)] > 0; });
        if (!anyShown)
            continue;
        BasicGraphGroup group;
        group.firstBar = qint32(d.bars.size());
        group.barCount = qint32(s.order.size());
        group.firstLegend = s.firstLegend;
        group.legendCount = qint32(s.order.size());
        if (split) {
            const Alternative &alt =
                doc.alternatives[std::size_t(doc.questions[std::size_t(request.splitQuestion)].firstAlternative) + g];
            group.label = selection.shortCategoryNames ? alt.shortText : alt.text;
            if (withIndex && groupIndex[g] != -1.0)
                group.label += QStringLiteral(" (") + formatIndex(groupIndex[g], decimals, locale) + QLatin1Char(')');
            group.label += QStringLiteral(" [") + formatCount(c.answered, locale) + QLatin1Char(']');
        } else {
            const Question &question = doc.questions[std::size_t(questions[g])];
            group.label = question.code + QLatin1Char(' ');
            if (withIndex && groupIndex[g] >= 0) {
                group.label += QLatin1Char('(') + formatIndex(groupIndex[g], decimals, locale);
                if (request.showTotalIndex)
                    group.label +=
                        QStringLiteral(" / ") + formatIndex(flex.questionIndex(questions[g]), decimals, locale);
                group.label += QStringLiteral(") ");
            }
            group.label += question.text;
        }
        for (qint32 a : s.order) {
            const Alternative &alt = doc.alternatives[std::size_t(s.first + a)];
            BasicGraphBar bar;
            const qint64 n = c.count[std::size_t(a)];
            bar.count = qint32(n);
            bar.perMille = roundedShare(n, 1000, c.answered);
            if (c.answered > 0) {
                bar.countText = formatCount(n, locale);
                bar.percentText = formatCount(roundedShare(n, 100, c.answered), locale);
            }
            bar.colour = alt.graphColour;
            bar.drawFlags = alt.graphAttribute;
            d.bars.push_back(bar);
        }
        d.groups.push_back(group);
    }

    // 8. Selection text.
    d.selectionText =
        selection.selectionText + QStringLiteral(" [") + formatCount(qint64(rows.size()), locale) + QLatin1Char(']');
    if (request.showTotalIndex && withIndex)
        d.selectionText += QStringLiteral(" / ") + selection.usedTotalText + QStringLiteral(" [")
            + formatCount(selection.usedTotalSize, locale) + QLatin1Char(']');

    // 9. Total text: only for two or more groups with answers that carry points.
    const qint64 candidateGroups = qint64(groups.size()) - firstGroup;
    if (candidateGroups > 1 && withIndex && sumN > 0) {
        d.totalText = (swedish ? QStringLiteral("Totalt: ") : QStringLiteral("Total: "))
            + formatIndex(double(sumS) / double(sumN) / double(pointsScale), decimals, locale);
        if (request.showTotalIndex && isBlock)
            d.totalText += QStringLiteral(" / ") + formatIndex(flex.blockIndex(request.block), decimals, locale);
    }
    return d;
}

LegendRuns legendRuns(const BasicGraphDescription &description)
{
    LegendRuns result;
    for (const BasicGraphGroup &g : description.groups) {
        const std::pair<qint32, qint32> run{g.firstLegend, g.legendCount};
        auto it = std::find(result.runs.begin(), result.runs.end(), run);
        if (it == result.runs.end()) {
            result.runs.push_back(run);
            it = result.runs.end() - 1;
        }
        result.groupRun.push_back(qint32(it - result.runs.begin()));
    }
    return result;
}

QString basicGraphValuesText(const BasicGraphDescription &description, bool percentage)
{
    const auto &groups = description.groups;
    QStringList labels;
    qint32 lines = 0;
    for (const BasicGraphGroup &g : groups) {
        labels << g.label;
        lines = std::max(lines, g.barCount);
    }
    QString text = labels.join(QLatin1Char('\t'));
    for (qint32 r = 0; r < lines; ++r) {
        QStringList cells;
        for (const BasicGraphGroup &g : groups) {
            const qint32 bar = g.firstBar + r;
            if (r < g.barCount && bar >= 0 && std::size_t(bar) < description.bars.size()) {
                const BasicGraphBar &b = description.bars[std::size_t(bar)];
                cells << (percentage ? b.percentText : b.countText);
            } else {
                cells << QString();
            }
        }
        text += QStringLiteral("\r\n") + cells.join(QLatin1Char('\t'));
    }
    return text;
}

QString basicGraphLegendsText(const BasicGraphDescription &description)
{
    const LegendRuns runs = legendRuns(description);
    qint32 lines = 0;
    for (const auto &run : runs.runs)
        lines = std::max(lines, run.second);
    QString text = description.title;
    for (qint32 r = 0; r < lines; ++r) {
        QStringList cells;
        for (const auto &[first, count] : runs.runs) {
            const qint32 index = first + r;
            cells << (r < count && index >= 0 && std::size_t(index) < description.legends.size()
                          ? description.legends[std::size_t(index)].text
                          : QString());
        }
        text += QStringLiteral("\r\n") + cells.join(QLatin1Char('\t'));
    }
    return text + QStringLiteral("\r\n") + description.selectionText;
}

} // namespace kel
