// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/selection/showdecision.h"

#include "engine/selection/counting.h"

#include <algorithm>

namespace kel {

namespace {

const Question *questionAt(const Document &doc, qint32 question)
{
    if (question < 0 || question >= qint32(doc.questions.size()))
        return nullptr;
    return &doc.questions[std::size_t(question)];
}

bool belowMinimum(qint32 n, qint32 minimum)
{
    return n > 0 && n < minimum;
}

} // namespace

Outcome<> showRefusalFor(const Document &doc, qint32 selectionSize, bool categoryBlocked, bool flexBlocked)
{
    if (categoryBlocked)
        return Refusal{RefusalCode::Blocked};
    if (flexBlocked)
        return Refusal{RefusalCode::FlexTotalBlocked};
    if (selectionSize < 1)
        return Refusal{RefusalCode::NoAnswers};
    if (selectionSize < doc.properties.minimumGraphSelection)
        return Refusal{RefusalCode::TooSmall};
    return {};
}

ShowPermissions showPermissions(const Document &doc, qint32 selectionSize, qint32 flexSize,
                                const std::vector<bool> &splitNotAllowed)
{
    const DocumentProperties &p = doc.properties;
    ShowPermissions permissions;
    permissions.shown = selectionSize >= 1 && selectionSize >= p.minimumGraphSelection;
    permissions.rows = permissions.shown && selectionSize >= p.minimumSelection;
    permissions.copyData = permissions.rows && p.allowCopy && p.allowCopyData;
    permissions.comments = permissions.rows;
    permissions.flexTotal = flexSize >= 1 && flexSize >= p.minimumGraphSelection;
    permissions.flexRows = permissions.flexTotal && flexSize >= p.minimumSelection;
    permissions.split.resize(splitNotAllowed.size());
    for (std::size_t c = 0; c < splitNotAllowed.size(); ++c)
        permissions.split[c] = permissions.shown && !splitNotAllowed[c];
    return permissions;
}

bool permits(const ShowPermissions &p, OutputCommand command, qint32 splitCategory)
{
    switch (command) {
    case OutputCommand::OverviewRows:
    case OutputCommand::CopyToMiniOverview:
    case OutputCommand::CopyThisRowsAnswers: return p.rows;
    case OutputCommand::CopyOverviewAsData: return p.copyData;
    case OutputCommand::RowsComments:
    case OutputCommand::ColumnsComments:
    case OutputCommand::AllComments: return p.comments;
    case OutputCommand::Figures:
        if (splitCategory < 0)
            return p.shown;
        return p.shown && std::size_t(splitCategory) < p.split.size() && p.split[std::size_t(splitCategory)];
    case OutputCommand::FlexFigures: return p.flexTotal;
    case OutputCommand::FlexRows: return p.flexRows;
    case OutputCommand::Count: break;
    }
    return false;
}

std::vector<bool> blockedCategories(const Document &doc, const SelectionMatrix &selection, const CountMatrix &found)
{
    const qint32 categories = qMin(qint32(doc.categories.size()), selection.categoryCount());
    std::vector<bool> blocked(std::size_t(qMax(categories, 0)), false);
    const qint32 minimum = doc.properties.minimumComplementSelection;
    for (qint32 c = 0; c < categories; ++c) {
        const Question *q = questionAt(doc, doc.categories[std::size_t(c)]);
        if (!q)
            continue;
        const qint32 options = qMin(q->alternativeCount, selection.optionCount());
        bool restricted = false;
        bool shaded = false;
        for (qint32 o = 0; o < options; ++o) {
            restricted = restricted || !selection.at(c, o);
            const bool checked = doc.alternatives[std::size_t(q->firstAlternative + o)].complementCheck;
            shaded = shaded || (checked && o < found.optionCount() && belowMinimum(found.at(c, o), minimum));
        }
        blocked[std::size_t(c)] = restricted && shaded;
    }
    return blocked;
}

std::vector<bool> splitNotAllowedFor(const Document &doc, const CountMatrix &found)
{
    const qint32 categories = qMin(qint32(doc.categories.size()), found.categoryCount());
    std::vector<bool> refused(std::size_t(qMax(categories, 0)), false);
    const qint32 minimum = doc.properties.minimumGraphSelection;
    for (qint32 c = 0; c < categories; ++c) {
        const Question *q = questionAt(doc, doc.categories[std::size_t(c)]);
        if (!q)
            continue;
        const qint32 options = qMin(q->alternativeCount, found.optionCount());
        for (qint32 o = 0; o < options; ++o)
            if (doc.alternatives[std::size_t(q->firstAlternative + o)].countsForPrivacy
                && belowMinimum(found.at(c, o), minimum))
                refused[std::size_t(c)] = true;
    }
    return refused;
}

bool splitRefused(const Document &doc, qint32 question, const std::vector<qint32> &rows)
{
    const Question *q = questionAt(doc, question);
    if (!q)
        return true;
    std::vector<qint32> groups(std::size_t(qMax(q->alternativeCount, 0)), 0);
    for (qint32 r : rows) {
        if (r < 0 || r >= doc.rowCount())
            continue;
        const qint32 v = doc.getData(r, question);
        if (v >= 0 && v < q->alternativeCount)
            ++groups[std::size_t(v)];
    }
    const qint32 minimum = doc.properties.minimumGraphSelection;
    for (qint32 o = 0; o < q->alternativeCount; ++o) {
        // A category's alternatives say which groups matter; any other
        // question's alternatives carry no such flags, so all of its
        // groups do.
        const bool counts = !q->isCategory || doc.alternatives[std::size_t(q->firstAlternative + o)].countsForPrivacy;
        if (counts && belowMinimum(groups[std::size_t(o)], minimum))
            return true;
    }
    return false;
}

std::vector<qint32> flexLeftOutGroups(const Document &doc, const SelectionMatrix &selection,
                                      const std::vector<bool> &flexOptions, bool basedOnSelection)
{
    const Question *flex = questionAt(doc, doc.flexCategory);
    if (!flex)
        return {};
    const qint32 options = flex->alternativeCount;
    std::vector<qint32> groups(std::size_t(qMax(options, 0)), 0);
    auto keeps = [&](qint32 o) { return o < 0 || o >= qint32(flexOptions.size()) || flexOptions[std::size_t(o)]; };
    bool leavesOut = false;
    for (qint32 o = 0; o < options; ++o)
        leavesOut = leavesOut || !keeps(o);
    if (!leavesOut)
        return groups;

    const bool flexIsCategory =
        std::find(doc.categories.begin(), doc.categories.end(), doc.flexCategory) != doc.categories.end();
    // Based on the selection, the flex options apply only through the flex
    // category's place in the navigator; without one the flex total is the
    // selection itself and leaves nobody out.
    if (basedOnSelection && !flexIsCategory)
        return groups;
    RowList candidates;
    if (basedOnSelection) {
        // The flex category does not restrict the rows the flex total is
        // drawn from: its own options decide that.
        SelectionMatrix others = selection;
        for (qint32 c = 0; c < qMin(qint32(doc.categories.size()), others.categoryCount()); ++c)
            if (doc.categories[std::size_t(c)] == doc.flexCategory)
                for (qint32 o = 0; o < others.optionCount(); ++o)
                    others.set(c, o, true);
        candidates = selectedRows(doc, others);
    } else {
        candidates.resize(std::size_t(qMax(doc.rowCount(), 0)));
        for (qint32 r = 0; r < doc.rowCount(); ++r)
            candidates[std::size_t(r)] = r;
    }
    for (qint32 r : candidates) {
        const qint32 v = doc.getData(r, doc.flexCategory);
        if (v >= 0 && v < options && !keeps(v))
            ++groups[std::size_t(v)];
    }
    return groups;
}

bool flexTotalBlocked(const Document &doc, const SelectionMatrix &selection, const std::vector<bool> &flexOptions,
                      bool basedOnSelection)
{
    const std::vector<qint32> groups = flexLeftOutGroups(doc, selection, flexOptions, basedOnSelection);
    const Question *flex = questionAt(doc, doc.flexCategory);
    if (!flex)
        return false;
    const qint32 minimum = doc.properties.minimumComplementSelection;
    for (qint32 o = 0; o < qint32(groups.size()); ++o)
        if (doc.alternatives[std::size_t(flex->firstAlternative + o)].complementCheck
            && belowMinimum(groups[std::size_t(o)], minimum))
            return true;
    return false;
}

bool documentForcesRandomOrder(const DocumentProperties &properties, qint32 n)
{
    const bool forced =
        properties.rowOrder != -1 && (properties.rowOrderThreshold == -1 || n < properties.rowOrderThreshold);
    return forced && (properties.rowOrder == 1 || properties.rowOrder == 2);
}

} // namespace kel
