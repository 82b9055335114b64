// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/overview/subsheet.h"

#include "engine/indexes/blockindex.h"
#include "engine/overview/sheetlayout.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace kel {

qint32 roundHalfEven(double value)
{
    // Truncation plus a correction is floor() without a library call; the
    // values are positions in a row list, far inside the 64-bit range.
    qint64 floor = qint64(value);
    if (double(floor) > value)
        --floor;
    const double diff = value - double(floor);
    if (diff > 0.5 || (diff == 0.5 && (floor & 1) != 0))
        ++floor;
    return qint32(floor);
}

qint32 randomPosition(RowRandom &random, qint32 n)
{
    if (n <= 1)
        return 0;
    // Rnd is single precision; the product is taken in double, as the
    // original arithmetic promotes a Single times a Long.
    return roundHalfEven(double(random.rnd()) * double(n - 1));
}

void shuffleRows(RowList &rows, RowRandom &random)
{
    // The exchange partners do not depend on the rows, so they are drawn a
    // batch ahead and their cache lines requested before the exchanges: on a
    // large selection the exchanges are otherwise one cache miss each.
    const qint32 n = qint32(rows.size());
    constexpr qint32 Batch = 64;
    std::array<qint32, Batch> partners;
    for (qint32 start = 0; start < n; start += Batch) {
        const qint32 count = qMin(Batch, n - start);
        for (qint32 k = 0; k < count; ++k) {
            partners[std::size_t(k)] = randomPosition(random, n);
#if defined(__GNUC__) || defined(__clang__)
            __builtin_prefetch(rows.data() + partners[std::size_t(k)], 1);
#endif
        }
        for (qint32 k = 0; k < count; ++k)
            std::swap(rows[std::size_t(start + k)], rows[std::size_t(partners[std::size_t(k)])]);
    }
}

qint32 effectiveRowOrder(const DocumentProperties &properties, qint32 userRowOrder, qint32 n)
{
    qint32 order = userRowOrder;
    if (properties.rowOrder != -1 && (properties.rowOrderThreshold == -1 || n < properties.rowOrderThreshold))
        order = properties.rowOrder;
    // Undefined codes behave as Original.
    return (order == RowOrderRandom || order == RowOrderRandomPerColumn) ? order : RowOrderOriginal;
}

SelectionSteps selectionSteps(const Document &doc, const SelectionMatrix &selection, const FlexTotal &flex)
{
    SelectionSteps steps;
    steps.found = CountMatrix(selection.categoryCount(), selection.optionCount());
    countOptions(doc, selection, steps.found);

    const qint32 categories = qMin(qint32(doc.categories.size()), selection.categoryCount());
    const qint32 firstVisible = firstVisibleOption(doc);
    steps.splitNotAllowed = splitNotAllowedFor(doc, steps.found);
    QString text;
    for (qint32 c = 0; c < categories; ++c) {
        const qint32 q = doc.categories[std::size_t(c)];
        const Question &question = doc.questions[std::size_t(q)];
        const qint32 k = question.alternativeCount;
        bool restricted = false;
        bool differsFromFlex = false;
        for (qint32 o = 0; o < k; ++o) {
            restricted = restricted || !selection.at(c, o);
            differsFromFlex = differsFromFlex || selection.at(c, o) != flex.option(o);
        }
        if (restricted) {
            QStringList names;
            for (qint32 o = firstVisible; o < k; ++o)
                if (selection.at(c, o))
                    names << doc.alternatives[std::size_t(question.firstAlternative + o)].shortText;
            text += QStringLiteral("; ") + question.selectionLabel + QLatin1Char(' ')
                + (names.isEmpty() ? QStringLiteral("--") : names.join(QStringLiteral(", ")));
        }
        if (flex.rowCount() >= 1) {
            if (q == doc.flexCategory)
                steps.differentFromUsedTotal = steps.differentFromUsedTotal || differsFromFlex;
            else
                steps.differentFromUsedTotal = steps.differentFromUsedTotal || restricted;
        }
    }
    steps.selectionText = text.isEmpty() ? doc.text(doc.properties.totalText) : text.mid(2);
    return steps;
}

qint32 SubSheet::displayedLines(qint32 maxRowsSetting) const
{
    if (!dataRowsAllowed || !outcome.done())
        return 0;
    return qMax(0, qMin(qint32(rows.size()), maxRowsSetting));
}

qint32 SubSheet::rowInCell(qint32 line, qint32 question) const
{
    // The offsets are filled only under Random per column, so the sheet's
    // own rule applies unchanged.
    return rowShownInCell(rows, columnRowOffsets, question, line);
}

SubSheet createSubSheet(const Document &doc, const BlockCatalogue &catalogue, const SelectionMatrix &selection,
                        FlexTotal &flex, qint32 userRowOrder, RowRandom &random)
{
    SubSheet sheet;
    sheet.selection = selection;
    sheet.steps = selectionSteps(doc, selection, flex);
    const std::vector<bool> blocked = blockedCategories(doc, selection, sheet.steps.found);
    const bool categoryBlocked = std::find(blocked.begin(), blocked.end(), true) != blocked.end();
    const bool flexBlocked =
        flex.basedOnCurrentSelection() && !categoryBlocked && flexTotalBlocked(doc, selection, flex.options(), true);
    if (categoryBlocked || flexBlocked) {
        // Refused before anything changes: the flex total stays as it was.
        sheet.outcome = showRefusalFor(doc, 0, categoryBlocked, flexBlocked);
        return sheet;
    }
    if (flex.basedOnCurrentSelection())
        flex.buildFlexTotalFromSelection(doc, catalogue, selection);

    RowList rows = selectedRows(doc, selection);
    const qint32 n = qint32(rows.size());
    sheet.outcome = showRefusalFor(doc, n, false, false);
    if (!sheet.outcome.done())
        return sheet;

    sheet.permissions = showPermissions(doc, n, flex.rowCount(), sheet.steps.splitNotAllowed);
    sheet.dataRowsAllowed = sheet.permissions.rows;
    sheet.rowOrder = effectiveRowOrder(doc.properties, userRowOrder, n);
    if (sheet.rowOrder == RowOrderRandom) {
        shuffleRows(rows, random);
    } else if (sheet.rowOrder == RowOrderRandomPerColumn) {
        sheet.columnRowOffsets.resize(doc.questions.size());
        for (qint32 &offset : sheet.columnRowOffsets)
            offset = randomPosition(random, n);
        sheet.randomPerColumn = true;
    }
    sheet.rows = std::move(rows);

    if (doc.properties.pointsScale >= 1) {
        const double total = calculateTotalIndex(doc, sheet.rows);
        sheet.totalIndex = total == -1.0 ? 0.0 : total;
    }
    return sheet;
}

} // namespace kel

namespace kel {

SubSheet showSelection(const Document &doc, const BlockCatalogue &catalogue, SelectionModel &model, FlexTotal &flex,
                       qint32 userRowOrder, RowRandom &random)
{
    // The gate of the navigator's button, asked again here: Show called
    // without the button refuses what the button would not offer.
    CountMatrix found(model.selected().categoryCount(), model.selected().optionCount());
    countOptions(doc, model.selected(), found);
    const std::vector<bool> blocked = blockedCategories(doc, model.selected(), found);
    const bool flexEdited = model.flexVisible()
        && (model.flexOptions() != model.appliedFlexOptions()
            || model.flexBasedOnCurrentSelection() != model.appliedFlexBasedOnCurrentSelection());
    const std::vector<bool> &flexOptions = flexEdited ? model.flexOptions() : flex.options();
    const bool flexBased = flexEdited ? model.flexBasedOnCurrentSelection() : flex.basedOnCurrentSelection();
    if (std::find(blocked.begin(), blocked.end(), true) != blocked.end()) {
        SubSheet refused;
        refused.outcome = Refusal{RefusalCode::Blocked};
        return refused;
    }
    if (model.flexVisible() && flexTotalBlocked(doc, model.selected(), flexOptions, flexBased)) {
        SubSheet refused;
        refused.outcome = Refusal{RefusalCode::FlexTotalBlocked};
        return refused;
    }
    if (model.applyShow())
        flex.setFlexTotal(doc, catalogue, model.appliedFlexOptions(), model.appliedFlexBasedOnCurrentSelection());
    return createSubSheet(doc, catalogue, model.appliedSelection(), flex, userRowOrder, random);
}

} // namespace kel
