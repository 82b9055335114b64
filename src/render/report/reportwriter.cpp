// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/report/reportwriter.h"

#include "render/graphs/basicgraphrenderer.h"
#include "render/overview/overviewpicture.h"
#include "render/overview/sheetdrawer.h"
#include "render/pictures/picturewriter.h"
#include "engine/settings/settingsstore.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QHashFunctions>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPicture>
#include <QRegularExpression>
#include <QSaveFile>

namespace kel {

namespace {

// Pages are laid out in pixels of 96 dots per inch, the unit every picture
// is measured in, so a picture keeps its proportions on paper.
constexpr int PageDotsPerInch = 96;
constexpr qreal Margin = 60.0;
constexpr qreal Gap = 10.0;

QFont reportFont(qreal points, bool bold = false, bool italic = false)
{
    // One named family, so the same report comes out the same on every
    // machine with the same fonts.
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSizeF(points);
    font.setBold(bold);
    font.setItalic(italic);
    return font;
}

std::optional<Picture> itemPicture(const ReportItem &item, const ReportUnit &unit, const ChartPictureMaker &charts)
{
    switch (item.kind) {
    case ReportItem::Kind::BasicGraph: return basicGraphDefaultPicture(*item.basic);
    case ReportItem::Kind::Chart:
        if (charts)
            return charts(*item.chart);
        return std::nullopt;
    case ReportItem::Kind::Overview: {
        if (!unit.document || !unit.sheet)
            return std::nullopt;
        Picture p = overviewPicture(sheetInputFor(*unit.document, *unit.sheet), SheetMode::CopyPicture,
                                    OverviewPictureContent::Answers, unit.sheet->dataRowsAllowed);
        if (p.isValid())
            return p;
        return std::nullopt;
    }
    default: return std::nullopt;
    }
}

// ---------------------------------------------------------------- pages

struct Element {
    QRectF rect;
    std::function<void(QPainter &, const QRectF &)> draw;
};

struct Page {
    std::vector<Element> elements;
};

class PageLayout
{
public:
    PageLayout(QPaintDevice *metrics, QSizeF pageSize)
        : mMetrics(metrics), mArea(Margin, Margin, pageSize.width() - 2 * Margin, pageSize.height() - 2 * Margin)
    {
    }

    const QRectF &area() const { return mArea; }
    std::vector<Page> &pages() { return mPages; }
    int pageCount() const { return int(mPages.size()); }
    bool atTop() const { return mY <= mArea.top(); }

    void newPage()
    {
        mPages.emplace_back();
        mY = mArea.top();
    }

    qreal textHeight(const QFont &font, const QString &text, qreal width) const
    {
        const QFontMetricsF metrics(font, mMetrics);
        return metrics.boundingRect(QRectF(0, 0, width, 1e6), Qt::TextWordWrap, text).height();
    }

    /// Room for `height` on this page, else a new one.
    void ensure(qreal height)
    {
        if (mPages.empty() || (mY + height > mArea.bottom() && !atTop()))
            newPage();
    }

    void place(qreal height, std::function<void(QPainter &, const QRectF &)> draw, qreal after = Gap)
    {
        ensure(height);
        mPages.back().elements.push_back({QRectF(mArea.left(), mY, mArea.width(), height), std::move(draw)});
        mY += height + after;
    }

    void text(const QString &text, const QFont &font, qreal after = Gap)
    {
        const qreal h = textHeight(font, text, mArea.width());
        place(
            h,
            [text, font](QPainter &p, const QRectF &r) {
                p.setFont(font);
                p.drawText(r, Qt::TextWordWrap, text);
            },
            after);
    }

    void table(const std::vector<QStringList> &rows)
    {
        if (rows.empty())
            return;
        const QFont plain = reportFont(8);
        const QFont bold = reportFont(8, true);
        std::size_t columns = 0;
        for (const QStringList &r : rows)
            columns = std::max(columns, std::size_t(r.size()));
        if (columns == 0)
            return;
        // The first column holds the names; the figures share the rest.
        const qreal first = columns > 1 ? mArea.width() * 0.4 : mArea.width();
        const qreal other = columns > 1 ? (mArea.width() - first) / qreal(columns - 1) : 0;
        const auto rowHeight = [&](const QStringList &cells, const QFont &font) {
            qreal h = 0;
            for (qsizetype c = 0; c < cells.size(); ++c)
                h = std::max(h, textHeight(font, cells[c], (c == 0 ? first : other) - 6));
            return h + 4;
        };
        const auto drawRow = [first, other](const QStringList &cells, const QFont &font) {
            return [cells, font, first, other](QPainter &p, const QRectF &r) {
                p.setFont(font);
                p.setPen(QPen(Qt::gray, 0.5));
                p.drawLine(r.bottomLeft(), r.bottomRight());
                p.setPen(Qt::black);
                qreal x = r.left();
                for (qsizetype c = 0; c < cells.size(); ++c) {
                    const qreal w = c == 0 ? first : other;
                    const Qt::Alignment align = c == 0 ? Qt::AlignLeft : Qt::AlignRight;
                    p.drawText(QRectF(x + 3, r.top() + 2, w - 6, r.height() - 4), int(align) | Qt::TextWordWrap,
                               cells[c]);
                    x += w;
                }
            };
        };
        const qreal headerHeight = rowHeight(rows.front(), bold);
        place(headerHeight, drawRow(rows.front(), bold), 0);
        for (std::size_t i = 1; i < rows.size(); ++i) {
            const qreal h = rowHeight(rows[i], plain);
            if (mY + h > mArea.bottom()) {
                // The header again on the next page, so every page can be read alone.
                newPage();
                place(headerHeight, drawRow(rows.front(), bold), 0);
            }
            place(h, drawRow(rows[i], plain), 0);
        }
        mY += Gap;
    }

    /// Starts a new page unless `text` and a few lines after it fit here.
    void keepWithNext(const QFont &font, const QString &heading)
    {
        ensure(textHeight(font, heading, mArea.width()) + 120);
    }

    /// The picture scaled to fit the page, with `heading` above it on the same page.
    void picture(const Picture &picture, const QString &heading = QString())
    {
        const QFont headingFont = reportFont(14, true);
        const qreal headingHeight = heading.isEmpty() ? 0 : textHeight(headingFont, heading, mArea.width()) + Gap;
        const qreal scale = std::min(
            {1.0, mArea.width() / picture.size.width(), (mArea.height() - headingHeight) / picture.size.height()});
        const QSizeF size(picture.size.width() * scale, picture.size.height() * scale);
        ensure(headingHeight + size.height());
        if (!heading.isEmpty())
            text(heading, headingFont);
        place(
            size.height(),
            [picture, size](QPainter &p, const QRectF &r) {
                p.save();
                p.translate(r.left() + (r.width() - size.width()) / 2, r.top());
                p.scale(size.width() / picture.size.width(), size.height() / picture.size.height());
                p.setClipRect(QRect(QPoint(0, 0), picture.size));
                picture.paint(p);
                p.restore();
            },
            2 * Gap);
    }

private:
    QPaintDevice *mMetrics;
    QRectF mArea;
    std::vector<Page> mPages;
    qreal mY = 0;
};

void layoutUnit(PageLayout &layout, const ReportUnit &unit, const ReportWords &words, const ChartPictureMaker &charts)
{
    layout.newPage();
    layout.text(unit.name, reportFont(16, true), 2 * Gap);
    if (unit.isRefused()) {
        layout.text(unit.refusal, reportFont(11, false, true));
        return;
    }
    for (const ReportItem &item : unit.items) {
        switch (item.kind) {
        // A heading never ends a page: it goes with what follows it.
        case ReportItem::Kind::Heading:
            layout.keepWithNext(reportFont(14, true), item.text);
            layout.text(item.text, reportFont(14, true));
            break;
        case ReportItem::Kind::SubHeading:
            layout.keepWithNext(reportFont(10, true), item.text);
            layout.text(item.text, reportFont(10, true), Gap / 2);
            break;
        case ReportItem::Kind::Text: layout.text(item.text, reportFont(9), Gap / 2); break;
        case ReportItem::Kind::Labelled:
            layout.text(item.text, reportFont(9, true), 2);
            layout.text(item.value, reportFont(11));
            break;
        case ReportItem::Kind::Notice: layout.text(item.text, reportFont(9, false, true)); break;
        case ReportItem::Kind::Table: layout.table(item.table); break;
        case ReportItem::Kind::PageBreak:
            if (!layout.atTop())
                layout.newPage();
            break;
        case ReportItem::Kind::Overview:
        case ReportItem::Kind::BasicGraph:
        case ReportItem::Kind::Chart:
            if (const std::optional<Picture> picture = itemPicture(item, unit, charts))
                layout.picture(*picture, item.kind == ReportItem::Kind::Overview ? item.text : QString());
            else
                layout.text(words.graphTooBig, reportFont(9, false, true));
            break;
        }
    }
}

// The contents: every unit, refused ones marked, with its first page.
int contentsLines(const Report &report)
{
    return int(report.units.size());
}

struct LaidOut {
    std::vector<Page> pages;
    std::vector<int> firstPages; ///< per unit, 0-based
    bool cancelled = false;
};

LaidOut layoutReport(const Report &report, QPaintDevice *metrics, QSizeF pageSize, const ChartPictureMaker &charts,
                     const ReportProgress &progress, std::size_t unitLimit)
{
    LaidOut out;
    PageLayout body(metrics, pageSize);
    // The contents come first, so their length is found before the units' pages.
    const qreal line = body.textHeight(reportFont(10), QStringLiteral("X"), body.area().width()) + 4;
    const qreal heading = body.textHeight(reportFont(16, true), report.title, body.area().width())
        + body.textHeight(reportFont(14, true), report.words.contents, body.area().width()) + 4 * Gap;
    const int perPage = std::max(1, int((body.area().height() - heading) / line));
    const int contentsPages = std::max(1, (contentsLines(report) + perPage - 1) / perPage);
    for (int i = 0; i < contentsPages; ++i)
        body.newPage();
    const std::size_t units = std::min(unitLimit, report.units.size());
    for (std::size_t u = 0; u < units; ++u) {
        out.firstPages.push_back(body.pageCount());
        layoutUnit(body, report.units[u], report.words, charts);
        if (progress && !progress(int(u + 1))) {
            out.cancelled = true;
            return out;
        }
    }
    out.pages = std::move(body.pages());

    // Now the contents, with the page numbers known.
    PageLayout contents(metrics, pageSize);
    contents.newPage();
    contents.text(report.title, reportFont(16, true), Gap);
    contents.text(report.words.contents, reportFont(14, true), 2 * Gap);
    for (std::size_t u = 0; u < units; ++u) {
        const ReportUnit &unit = report.units[u];
        const QString name =
            unit.isRefused() ? QStringLiteral("%1 (%2)").arg(unit.name, report.words.refused) : unit.name;
        const QString page = QString::number(out.firstPages[u] + 1);
        const QFont font = reportFont(10);
        contents.place(
            line - 4,
            [name, page, font](QPainter &p, const QRectF &r) {
                p.setFont(font);
                p.drawText(r, Qt::AlignLeft | Qt::AlignVCenter, name);
                p.drawText(r, Qt::AlignRight | Qt::AlignVCenter, page);
            },
            4);
    }
    for (std::size_t i = 0; i < contents.pages().size() && i < std::size_t(contentsPages); ++i)
        out.pages[i] = std::move(contents.pages()[i]);
    return out;
}

void drawPage(QPainter &painter, const Page &page, int number, int count, const QString &pageWords, QSizeF pageSize)
{
    for (const Element &e : page.elements) {
        painter.save();
        e.draw(painter, e.rect);
        painter.restore();
    }
    painter.setFont(reportFont(8));
    painter.setPen(Qt::black);
    painter.drawText(QRectF(Margin, pageSize.height() - Margin + Gap, pageSize.width() - 2 * Margin, Margin / 2),
                     Qt::AlignHCenter | Qt::AlignTop, pageWords.arg(number).arg(count));
}

QSizeF pagePixels()
{
    const QSizeF mm = QPageSize(QPageSize::A4).size(QPageSize::Millimeter);
    return {mm.width() / 25.4 * PageDotsPerInch, mm.height() / 25.4 * PageDotsPerInch};
}

// QPdfWriter stamps every file with the time and a random document id. They
// are replaced in place, byte for byte the same length, so the cross
// reference table stays right: the time by the epoch, the ids by a hash of
// the rest of the file.
QByteArray fixPdfStamps(QByteArray pdf)
{
    static const QRegularExpression date(QStringLiteral(R"(\(D:(\d{14})([^)]*)\))"));
    static const QRegularExpression xmpDate(
        QStringLiteral(R"((<xmp:(?:CreateDate|ModifyDate|MetadataDate)>)([^<]*)(<))"));
    static const QRegularExpression uuid(
        QStringLiteral(R"(uuid:[0-9a-fA-F]{8}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{12})"));
    static const QRegularExpression fileId(QStringLiteral(R"(/ID\s*\[\s*<([0-9a-fA-F]+)>\s*<([0-9a-fA-F]+)>\s*\])"));
    QString text = QString::fromLatin1(pdf);
    const auto replaceSameLength = [&text](const QRegularExpression &re, int group,
                                           const std::function<QString(const QString &)> &with) {
        QRegularExpressionMatchIterator it = re.globalMatch(text);
        std::vector<std::pair<qsizetype, QString>> edits;
        while (it.hasNext()) {
            const QRegularExpressionMatch m = it.next();
            const QString replacement = with(m.captured(group));
            edits.emplace_back(m.capturedStart(group), replacement.left(m.capturedLength(group)));
        }
        for (const auto &[at, replacement] : edits)
            text.replace(at, replacement.size(), replacement);
    };
    replaceSameLength(date, 1, [](const QString &) { return QStringLiteral("19700101000000"); });
    replaceSameLength(date, 2,
                      [](const QString &s) { return QString(s.size(), QLatin1Char('0')).replace(0, 1, s.left(1)); });
    replaceSameLength(xmpDate, 2, [](const QString &s) {
        QString fixed = QStringLiteral("1970-01-01T00:00:00+00:00");
        return fixed.leftJustified(s.size(), QLatin1Char(' '), true);
    });
    // The hash is of the file with its stamps already fixed and ids blanked.
    QString blank = text;
    blank.replace(uuid, QStringLiteral("uuid:"));
    blank.replace(fileId, QStringLiteral("/ID[]"));
    const QString hash =
        QString::fromLatin1(QCryptographicHash::hash(blank.toLatin1(), QCryptographicHash::Sha256).toHex());
    replaceSameLength(uuid, 0, [&hash](const QString &s) {
        QString u = QStringLiteral("uuid:%1-%2-%3-%4-%5")
                        .arg(hash.mid(0, 8), hash.mid(8, 4), hash.mid(12, 4), hash.mid(16, 4), hash.mid(20, 12));
        return u.leftJustified(s.size(), QLatin1Char('0'), true);
    });
    for (int group : {1, 2})
        replaceSameLength(fileId, group, [&hash](const QString &s) {
            return hash.repeated(int(s.size() / hash.size()) + 1).left(s.size());
        });
    return text.toLatin1();
}

QString escaped(const QString &text)
{
    return text.toHtmlEscaped();
}

QString svgOf(const Picture &picture)
{
    QByteArray svg = encodePicture(picture, PictureFormat::Svg);
    // The XML declaration belongs to files; inside HTML the element starts.
    const qsizetype start = svg.indexOf("<svg");
    if (start > 0)
        svg.remove(0, start);
    return QString::fromUtf8(svg);
}

QString htmlUnit(const ReportUnit &unit, int number, const ReportWords &words, const ChartPictureMaker &charts)
{
    QString html =
        QStringLiteral("<section class=\"unit\" id=\"unit%1\">\n<h1>%2</h1>\n").arg(number).arg(escaped(unit.name));
    if (unit.isRefused())
        return html + QStringLiteral("<p class=\"refusal\">%1</p>\n</section>\n").arg(escaped(unit.refusal));
    for (const ReportItem &item : unit.items) {
        switch (item.kind) {
        case ReportItem::Kind::Heading: html += QStringLiteral("<h2>%1</h2>\n").arg(escaped(item.text)); break;
        case ReportItem::Kind::SubHeading: html += QStringLiteral("<h3>%1</h3>\n").arg(escaped(item.text)); break;
        case ReportItem::Kind::Text: html += QStringLiteral("<p>%1</p>\n").arg(escaped(item.text)); break;
        case ReportItem::Kind::Labelled:
            html += QStringLiteral("<p class=\"label\">%1</p>\n<p class=\"value\">%2</p>\n")
                        .arg(escaped(item.text), escaped(item.value));
            break;
        case ReportItem::Kind::Notice:
            html += QStringLiteral("<p class=\"notice\">%1</p>\n").arg(escaped(item.text));
            break;
        case ReportItem::Kind::PageBreak: html += QStringLiteral("<hr>\n"); break;
        case ReportItem::Kind::Table: {
            html += QStringLiteral("<table>\n");
            for (std::size_t r = 0; r < item.table.size(); ++r) {
                const QString cell = r == 0 ? QStringLiteral("th") : QStringLiteral("td");
                html += QStringLiteral("<tr>");
                for (const QString &c : item.table[r])
                    html += QStringLiteral("<%1>%2</%1>").arg(cell, escaped(c));
                html += QStringLiteral("</tr>\n");
            }
            html += QStringLiteral("</table>\n");
            break;
        }
        case ReportItem::Kind::Overview:
            html += QStringLiteral("<h2>%1</h2>\n").arg(escaped(item.text));
            [[fallthrough]];
        case ReportItem::Kind::BasicGraph:
        case ReportItem::Kind::Chart:
            if (const std::optional<Picture> picture = itemPicture(item, unit, charts))
                html += QStringLiteral("<figure>%1</figure>\n").arg(svgOf(*picture));
            else
                html += QStringLiteral("<p class=\"notice\">%1</p>\n").arg(escaped(words.graphTooBig));
            break;
        }
    }
    return html + QStringLiteral("</section>\n");
}

} // namespace

std::optional<ReportFormat> reportFormatForFileName(const QString &fileName)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    if (suffix == QLatin1String("pdf"))
        return ReportFormat::Pdf;
    if (suffix == QLatin1String("html") || suffix == QLatin1String("htm"))
        return ReportFormat::Html;
    return std::nullopt;
}

QByteArray reportPdf(const Report &report, const ChartPictureMaker &charts, const ReportProgress &progress)
{
    // The PDF engine keeps its fonts in hashes and writes them in the hashes'
    // order, which follows a seed drawn per process; a fixed seed keeps the
    // order, and so the bytes, the same from run to run.
    QHashSeed::setDeterministicGlobalSeed();
    QByteArray out;
    QBuffer buffer(&out);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setCreator(report.title);
    writer.setTitle(report.title);
    writer.setResolution(PageDotsPerInch);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    const QSizeF page = pagePixels();
    LaidOut laid = layoutReport(report, &writer, page, charts, progress, report.units.size());
    if (laid.cancelled)
        return {};
    QPainter painter;
    if (!painter.begin(&writer))
        return {};
    for (std::size_t i = 0; i < laid.pages.size(); ++i) {
        if (i > 0)
            writer.newPage();
        drawPage(painter, laid.pages[i], int(i + 1), int(laid.pages.size()), report.words.page, page);
    }
    painter.end();
    buffer.close();
    return fixPdfStamps(out);
}

std::vector<QImage> reportPreviewPages(const Report &report, const ChartPictureMaker &charts, int maxPages)
{
    const QSizeF page = pagePixels();
    QImage probe(1, 1, QImage::Format_RGB32);
    const int dotsPerMeter = qRound(PageDotsPerInch / 0.0254);
    probe.setDotsPerMeterX(dotsPerMeter);
    probe.setDotsPerMeterY(dotsPerMeter);
    LaidOut laid = layoutReport(report, &probe, page, charts, {}, 1);
    std::vector<QImage> images;
    const std::size_t first = laid.firstPages.empty() ? 0 : std::size_t(laid.firstPages.front());
    for (std::size_t i = first; i < laid.pages.size() && int(images.size()) < maxPages; ++i) {
        QImage image(page.toSize(), QImage::Format_RGB32);
        image.setDotsPerMeterX(dotsPerMeter);
        image.setDotsPerMeterY(dotsPerMeter);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        drawPage(painter, laid.pages[i], int(i + 1), int(laid.pages.size()), report.words.page, page);
        painter.end();
        images.push_back(std::move(image));
    }
    return images;
}

QByteArray reportHtml(const Report &report, const ChartPictureMaker &charts, const ReportProgress &progress)
{
    QString html =
        QStringLiteral("<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>%1</title>\n<style>\n"
                       "body { font-family: 'DejaVu Sans', sans-serif; max-width: 60em; margin: 2em auto; }\n"
                       "section.unit { border-top: 2px solid #444; margin-top: 3em; }\n"
                       "table { border-collapse: collapse; }\n"
                       "th, td { border-bottom: 1px solid #ccc; padding: 2px 8px; }\n"
                       "td + td, th + th { text-align: right; }\n"
                       ".label { font-weight: bold; margin-bottom: 0; }\n"
                       ".notice, .refusal { font-style: italic; }\n"
                       "figure svg { max-width: 100%; height: auto; }\n"
                       "@media print { section.unit { page-break-before: always; } }\n"
                       "</style>\n</head>\n<body>\n<h1>%1</h1>\n<nav>\n<h2>%2</h2>\n<ol>\n")
            .arg(escaped(report.title), escaped(report.words.contents));
    for (std::size_t u = 0; u < report.units.size(); ++u) {
        const ReportUnit &unit = report.units[u];
        html += QStringLiteral("<li><a href=\"#unit%1\">%2</a>%3</li>\n")
                    .arg(u + 1)
                    .arg(escaped(unit.name),
                         unit.isRefused() ? QStringLiteral(" (%1)").arg(escaped(report.words.refused)) : QString());
    }
    html += QStringLiteral("</ol>\n</nav>\n");
    for (std::size_t u = 0; u < report.units.size(); ++u) {
        html += htmlUnit(report.units[u], int(u + 1), report.words, charts);
        if (progress && !progress(int(u + 1)))
            return {};
    }
    html += QStringLiteral("</body>\n</html>\n");
    return html.toUtf8();
}

ReportWriteResult writeReport(const Report &report, ReportFormat format, const QString &path,
                              const ChartPictureMaker &charts, const ReportProgress &progress, WriteFailure *failure)
{
    bool cancelled = false;
    const ReportProgress watched = [&](int done) {
        cancelled = progress && !progress(done);
        return !cancelled;
    };
    const QByteArray bytes =
        format == ReportFormat::Pdf ? reportPdf(report, charts, watched) : reportHtml(report, charts, watched);
    if (cancelled) {
        // Cancelled before anything reached the disk.
        return ReportWriteResult::Cancelled;
    }
    if (bytes.isEmpty()) {
        setWriteFailure(failure, WriteFailureCode::ReportNotDrawn);
        return ReportWriteResult::Failed;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        setWriteFailure(failure, WriteFailureCode::NotWritten, file.errorString());
        return ReportWriteResult::Failed;
    }
    return ReportWriteResult::Written;
}

} // namespace kel
