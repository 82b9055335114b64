// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/indexes/indexexport.h"

#include "engine/document/documentlanguage.h"
#include "engine/indexes/blockindex.h"

namespace kel {

namespace {

bool blockListed(const BlockCatalogue &catalogue, qint32 block)
{
    const Block *b = catalogue.blockAt(block);
    return b && b->includeInCopy && b->totalIndex != -1.0;
}

// Pooled indexes are sums over their questions, so every cell of the table
// is assembled from per-question (sum, count) pairs of its sub-selection:
// each question's answers are read once per sub-selection, however many
// items pool it. The division is the one calculateColumnsIndex does, so the
// values are the same to the last bit.
struct QuestionSums {
    std::vector<qint64> sum;
    std::vector<qint64> count;
    std::vector<bool> done;
};

void addQuestion(const Document &doc, qint32 q, const RowList &rows, QuestionSums &sums)
{
    if (sums.done[std::size_t(q)])
        return;
    const Question &question = doc.questions[std::size_t(q)];
    qint64 sum = 0;
    qint64 n = 0;
    // A question without alternatives scores nothing, and its first
    // alternative may point anywhere (as in the column index).
    if (question.alternativeCount > 0 && !rows.empty()) {
        const Alternative *alts = doc.alternatives.data() + question.firstAlternative;
        doc.answers.visitColumn(q, [&](const auto *column) {
            for (qint32 r : rows) {
                const qint32 p = alts[column[r]].points;
                const bool scored = p != -1;
                sum += scored ? p : 0;
                n += scored;
            }
        });
    }
    sums.sum[std::size_t(q)] = sum;
    sums.count[std::size_t(q)] = n;
    sums.done[std::size_t(q)] = true;
}

} // namespace

bool IndexExportOptions::canExport() const
{
    const bool anySubSelection = subSelTotal || !subSelCategories.empty();
    bool anyItem = false;
    for (bool b : indexFor)
        anyItem = anyItem || b;
    return anySubSelection && anyItem;
}

std::vector<bool> maskedGroups(const std::vector<qint32> &sizes, qint32 minimum)
{
    std::vector<bool> masked(sizes.size(), false);
    qint32 count = 0;
    qint64 people = 0;
    for (std::size_t g = 0; g < sizes.size(); ++g) {
        if (sizes[g] > 0 && sizes[g] < minimum) {
            masked[g] = true;
            ++count;
            people += sizes[g];
        }
    }
    // One masked group is the total minus the others; several masked groups
    // together are a group of their own, which must be large enough.
    while (count > 0 && (count == 1 || people < minimum)) {
        std::size_t next = sizes.size();
        for (std::size_t g = 0; g < sizes.size(); ++g)
            if (!masked[g] && sizes[g] > 0 && (next == sizes.size() || sizes[g] < sizes[next]))
                next = g;
        if (next == sizes.size())
            break;
        masked[next] = true;
        ++count;
        people += sizes[next];
    }
    return masked;
}

std::vector<SubSelection> buildSubSelections(const Document &doc, const IndexExportOptions &options,
                                             const RowList &currentRows)
{
    std::vector<SubSelection> result;
    if (options.subSelTotal)
        result.push_back({documentIsSwedish(doc) ? QStringLiteral("Totalt") : QStringLiteral("Total"), currentRows});
    const qint32 firstVisible = doc.properties.firstAlternativeIsNoAnswer ? 1 : 0;
    for (qint32 q : options.subSelCategories) {
        if (q < 0 || q >= qint32(doc.questions.size()))
            continue;
        const Question &question = doc.questions[std::size_t(q)];
        const std::size_t first = result.size();
        for (qint32 o = firstVisible; o < question.alternativeCount; ++o)
            result.push_back({question.heading + QStringLiteral(": ")
                                  + doc.alternatives[std::size_t(question.firstAlternative + o)].text,
                              {},
                              q});
        doc.answers.visitColumn(q, [&](const auto *column) {
            for (qint32 r : currentRows) {
                const qint32 v = qint32(column[r]);
                if (v >= firstVisible && v < question.alternativeCount)
                    result[first + std::size_t(v - firstVisible)].rows.push_back(r);
            }
        });
    }
    return result;
}

std::vector<IndexItem> buildIndexItems(const Document &doc, const BlockCatalogue &catalogue,
                                       const IndexExportOptions &options)
{
    using O = IndexExportOptions;
    std::vector<IndexItem> items;
    if (options.indexFor[O::ForTotal])
        items.push_back(
            {IndexItem::Total, -1, documentIsSwedish(doc) ? QStringLiteral("Totalt") : QStringLiteral("Total")});
    qint32 previousBlock = -1;
    qint32 previousSubBlock = -1;
    for (qint32 q : doc.overviewColumns) {
        const Question &question = doc.questions[std::size_t(q)];
        if (options.indexFor[O::ForBlocks] && question.block != previousBlock) {
            previousBlock = question.block;
            if (blockListed(catalogue, previousBlock))
                items.push_back({IndexItem::Block, previousBlock, catalogue.blockAt(previousBlock)->name});
        }
        if (options.indexFor[O::ForSubBlocks] && question.subBlock != previousSubBlock) {
            previousSubBlock = question.subBlock;
            if (blockListed(catalogue, previousSubBlock))
                items.push_back({IndexItem::Block, previousSubBlock, catalogue.blockAt(previousSubBlock)->name});
        }
        if (options.indexFor[O::ForQuestions] && question.totalIndex != -1.0)
            items.push_back({IndexItem::Question, q,
                             options.showFullQuestionText ? question.code + QStringLiteral(". ") + question.text
                                                          : question.heading});
    }
    if (options.indexFor[O::ForUserBlocks])
        for (const Block &block : catalogue.blocks)
            if (!block.fromDocument && block.includeInCopy)
                items.push_back({IndexItem::Block, qint32(&block - catalogue.blocks.data()), block.name});
    return items;
}

std::vector<double> calculateIndexValues(const Document &doc, const BlockCatalogue &catalogue,
                                         const std::vector<SubSelection> &subSelections,
                                         const std::vector<IndexItem> &items,
                                         const std::function<bool(qint32)> &progress)
{
    const std::size_t itemCount = items.size();
    std::vector<double> values(subSelections.size() * itemCount, NoIndexValue);
    const std::size_t questionCount = doc.questions.size();
    std::vector<QuestionSums> sums(subSelections.size());
    for (QuestionSums &s : sums) {
        s.sum.assign(questionCount, 0);
        s.count.assign(questionCount, 0);
        s.done.assign(questionCount, false);
    }
    const QuestionList total = totalMembers(doc);
    const double scale = double(doc.properties.pointsScale);
    const qint32 minimumGraph = doc.properties.minimumGraphSelection;
    if (scale < 1.0) // a document without indexes has no values to show
        return values;

    // The total of the selection is always on view (the overview's index
    // line), so each category's groups are masked together.
    std::vector<bool> masked(subSelections.size(), false);
    for (std::size_t s = 0; s < subSelections.size();) {
        std::size_t end = s + 1;
        while (end < subSelections.size() && subSelections[s].category >= 0
               && subSelections[end].category == subSelections[s].category)
            ++end;
        std::vector<qint32> sizes;
        for (std::size_t g = s; g < end; ++g)
            sizes.push_back(qint32(subSelections[g].rows.size()));
        const std::vector<bool> groupMasked =
            subSelections[s].category >= 0 ? maskedGroups(sizes, minimumGraph) : std::vector<bool>(sizes.size(), false);
        for (std::size_t g = s; g < end; ++g)
            masked[g] = groupMasked[g - s]
                || (subSelections[g].rows.size() > 0 && qint32(subSelections[g].rows.size()) < minimumGraph);
        s = end;
    }

    for (std::size_t i = 0; i < itemCount; ++i) {
        const IndexItem &item = items[i];
        QuestionList members;
        if (item.kind == IndexItem::Total)
            members = total;
        else if (item.kind == IndexItem::Block)
            members = blockMembers(doc, catalogue, item.number);
        else if (item.number >= 0 && std::size_t(item.number) < questionCount)
            members = {item.number};
        for (std::size_t s = 0; s < subSelections.size(); ++s) {
            const qint32 n = qint32(subSelections[s].rows.size());
            double &cell = values[s * itemCount + i];
            if (n == 0) {
                cell = NoIndexValue;
                continue;
            }
            if (masked[s]) {
                cell = MaskedIndexValue;
                continue;
            }
            qint64 sum = 0;
            qint64 count = 0;
            for (qint32 q : members) {
                addQuestion(doc, q, subSelections[s].rows, sums[s]);
                sum += sums[s].sum[std::size_t(q)];
                count += sums[s].count[std::size_t(q)];
            }
            cell = count > 0 ? (double(sum) / double(count)) / scale : NoIndexValue;
        }
        if (progress && !progress(qint32(i + 1)))
            return {};
    }
    return values;
}

QString formatIndexTable(const Document &doc, const QString &selectionText, const IndexExportOptions &options,
                         const std::vector<SubSelection> &subSelections, const std::vector<IndexItem> &items,
                         const std::vector<double> &values, const QLocale &locale)
{
    QLocale numbers = locale;
    numbers.setNumberOptions(numbers.numberOptions() | QLocale::OmitGroupSeparator);
    const qint32 decimals = doc.properties.indexDecimals;
    const std::size_t itemCount = items.size();
    auto cell = [&](std::size_t s, std::size_t i) -> QString {
        const double v = values[s * itemCount + i];
        if (v == MaskedIndexValue)
            return QStringLiteral("---");
        if (v == NoIndexValue)
            return QString();
        return numbers.toString(v, 'f', decimals);
    };
    auto count = [&](std::size_t s) { return numbers.toString(qlonglong(subSelections[s].rows.size())); };
    const QString answers = documentIsSwedish(doc) ? QStringLiteral("Antal") : QStringLiteral("Answers");
    const QChar tab = QLatin1Char('\t');

    QStringList lines;
    if (!options.subSelectionsInColumns) {
        QStringList first{selectionText};
        if (options.showNumberOfAnswers)
            first << answers;
        for (const IndexItem &item : items)
            first << item.name;
        lines << first.join(tab);
        for (std::size_t s = 0; s < subSelections.size(); ++s) {
            QStringList line{subSelections[s].name};
            if (options.showNumberOfAnswers)
                line << count(s);
            for (std::size_t i = 0; i < itemCount; ++i)
                line << cell(s, i);
            lines << line.join(tab);
        }
    } else {
        QStringList first{selectionText};
        for (const SubSelection &s : subSelections)
            first << s.name;
        lines << first.join(tab);
        if (options.showNumberOfAnswers) {
            QStringList line{answers};
            for (std::size_t s = 0; s < subSelections.size(); ++s)
                line << count(s);
            lines << line.join(tab);
        }
        for (std::size_t i = 0; i < itemCount; ++i) {
            QStringList line{items[i].name};
            for (std::size_t s = 0; s < subSelections.size(); ++s)
                line << cell(s, i);
            lines << line.join(tab);
        }
    }
    return lines.join(QStringLiteral("\r\n"));
}

QString exportIndexes(const Document &doc, const BlockCatalogue &catalogue, const QString &selectionText,
                      const RowList &currentRows, const IndexExportOptions &options, const QLocale &locale,
                      const std::function<bool(qint32)> &progress)
{
    const std::vector<SubSelection> subSelections = buildSubSelections(doc, options, currentRows);
    const std::vector<IndexItem> items = buildIndexItems(doc, catalogue, options);
    const std::vector<double> values = calculateIndexValues(doc, catalogue, subSelections, items, progress);
    if (values.size() != subSelections.size() * items.size())
        return QString();
    return formatIndexTable(doc, selectionText, options, subSelections, items, values, locale);
}

} // namespace kel
