// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/pictures/picturecommands.h"

#include "gui/common/waitcursor.h"
#include "render/pictures/picturewriter.h"
#include "texts/graphtexts.h"
#include "texts/language.h"
#include "texts/messages.h"
#include "texts/statusline.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include "gui/common/filedialogs.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHash>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QPalette>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QStandardPaths>
#include <QVersionNumber>

namespace kel {

namespace {

QClipboard *clipboardOr(QClipboard *clipboard)
{
    return clipboard ? clipboard : QGuiApplication::clipboard();
}

constexpr char EmfMime[] = "image/x-emf";
constexpr char WindowsEmfMime[] = "application/x-qt-windows-mime;value=\"Enhanced Metafile\"";

int setMime(QClipboard *clipboard, QMimeData *data, const QString &expectedFormat)
{
    clipboard->clear();
    clipboard->setMimeData(data);
    const QMimeData *kept = clipboard->mimeData();
    return (kept && kept->hasFormat(expectedFormat)) ? ClipboardOk : ClipboardRefused;
}

// Twips (1/1440 inch) to millimetres.
double twipsToMm(qint32 twips)
{
    return twips * 25.4 / 1440.0;
}

// The picture's formats are made when a program asks for one: a large
// overview costs seconds to encode as every format, and the program that
// pastes takes one.
class PictureMimeData : public QMimeData
{
public:
    PictureMimeData(const Picture &picture, bool withMetafiles) : mPicture(picture), mMetafiles(withMetafiles) { }

    QStringList formats() const override
    {
        QStringList list{QStringLiteral("image/png"), QStringLiteral("application/x-qt-image")};
        if (mMetafiles)
            list << QStringLiteral("image/svg+xml") << QString::fromLatin1(EmfMime)
                 << QString::fromLatin1(WindowsEmfMime);
        return list;
    }
    bool hasFormat(const QString &mimeType) const override { return formats().contains(mimeType); }

protected:
    QVariant retrieveData(const QString &mimeType, QMetaType type) const override
    {
        if (!hasFormat(mimeType))
            return QVariant();
        if (mimeType == QLatin1String("application/x-qt-image") && type.id() != QMetaType::QByteArray)
            return renderPictureImage(mPicture, Qt::white);
        auto cached = mCache.constFind(mimeType);
        if (cached != mCache.constEnd())
            return *cached;
        QByteArray bytes;
        if (mimeType == QLatin1String("image/svg+xml"))
            bytes = encodePicture(mPicture, PictureFormat::Svg);
        else if (mimeType == QLatin1String(EmfMime) || mimeType == QLatin1String(WindowsEmfMime))
            bytes = encodePicture(mPicture, PictureFormat::Emf);
        else
            bytes = encodePicture(mPicture, PictureFormat::Png);
        mCache.insert(mimeType, bytes);
        return bytes;
    }

private:
    Picture mPicture;
    bool mMetafiles;
    mutable QHash<QString, QByteArray> mCache;
};

// A picture that can be made at all: its size fits an image.
// What a clipboard picture may hold: 256 Mi pixels (1 GiB as 32-bit
// pixels), beyond which the bitmap formats cannot be made reliably.
constexpr qint64 MaxClipboardPixels = qint64(256) * 1024 * 1024;

int pictureProblem(const Picture &picture)
{
    if (!picture.isValid())
        return ClipboardNoPicture;
    if (qint64(picture.size.width()) * picture.size.height() > MaxClipboardPixels)
        return ClipboardTooLarge;
    return ClipboardOk;
}

} // namespace

void settlePictureClipboard(QClipboard *clipboard)
{
    clipboard = clipboardOr(clipboard);
    const auto *lazy = dynamic_cast<const PictureMimeData *>(clipboard->mimeData());
    if (!lazy)
        return;
    auto *settled = new QMimeData;
    for (const QString &format : lazy->formats())
        if (format != QLatin1String("application/x-qt-image"))
            settled->setData(format, lazy->data(format));
    settled->setImageData(lazy->imageData());
    clipboard->setMimeData(settled);
}

int copyPictureToClipboard(const Picture &picture, QClipboard *clipboard)
{
    if (const int problem = pictureProblem(picture))
        return problem;
    return setMime(clipboardOr(clipboard), new PictureMimeData(picture, true), QStringLiteral("image/png"));
}

int copyTextToClipboard(const QString &text, QClipboard *clipboard)
{
    auto *data = new QMimeData;
    data->setText(text);
    return setMime(clipboardOr(clipboard), data, QStringLiteral("text/plain"));
}

std::vector<SaveFilter> saveFilters(SaveKind kind, bool isSwedish, bool showsExtensions)
{
    struct Type {
        const char *english, *swedish, *pattern;
        PictureFormat format;
        qint32 value;
    };
    static const Type types[] = {
        {"Windows enhanced meta file", "Windows utökad metafil", "*.emf", PictureFormat::Emf, 1},
        {"Windows meta file", "Windows metafil", "*.wmf", PictureFormat::Wmf, 2},
        {"Portable Network Graphics", "Portable Network Graphics", "*.png", PictureFormat::Png, 3},
        {"Windows Bitmap", "Windows bitmapp", "*.bmp", PictureFormat::Bmp, 4},
        {"JPEG File Interchange Format", "JPEG-filutbytesformat", "*.jpg", PictureFormat::Jpg, 5},
        {"Graphics Interchange Format", "Graphics Interchange Format", "*.gif", PictureFormat::Gif, 6},
        {"Scalable Vector Graphics", "Scalable Vector Graphics", "*.svg", PictureFormat::Svg, 7},
        {"Portable Document Format", "Portable Document Format", "*.pdf", PictureFormat::Pdf, 8},
    };
    const std::size_t count = kind == SaveKind::Chart ? std::size(types) : 2;
    std::vector<SaveFilter> filters;
    for (std::size_t i = 0; i < count; ++i) {
        const Type &t = types[i];
        const QString pattern = QString::fromLatin1(t.pattern);
        QString description = pickText(isSwedish, t.english, t.swedish);
        if (showsExtensions)
            description += QStringLiteral(" (") + pattern + QLatin1Char(')');
        filters.push_back({description, pattern, t.format, t.value});
    }
    return filters;
}

int preselectedFilter(const std::vector<SaveFilter> &filters, qint32 graphSaveFormat)
{
    for (std::size_t i = 0; i < filters.size(); ++i)
        if (filters[i].settingValue == graphSaveFormat)
            return int(i);
    return 0;
}

QString pictureSaveFolder(const QString &stored, const QString &picturesFolder, const QString &documentsFolder)
{
    if (!stored.isEmpty() && QFileInfo(stored).isDir())
        return stored;
    return picturesFolder.isEmpty() ? documentsFolder : picturesFolder;
}

bool platformShowsFileExtensions()
{
    return true;
}

SaveChoice resolveSaveChoice(const std::vector<SaveFilter> &filters, const QString &fileName,
                             const QString &selectedFilter, bool extensionDecides)
{
    SaveChoice choice;
    choice.path = fileName;
    if (fileName.isEmpty())
        return choice;
    const SaveFilter *byFilter = nullptr;
    for (const SaveFilter &f : filters)
        if (f.description == selectedFilter
            || f.description + QStringLiteral(" (") + f.pattern + QLatin1Char(')') == selectedFilter)
            byFilter = &f;
    if (extensionDecides) {
        if (const auto format = pictureFormatForFileName(fileName)) {
            for (const SaveFilter &f : filters)
                if (f.format == *format) {
                    choice.format = f.format;
                    choice.settingValue = f.settingValue;
                    return choice;
                }
        }
    }
    if (!byFilter)
        return choice;
    choice.format = byFilter->format;
    choice.settingValue = byFilter->settingValue;
    const QString suffix = byFilter->pattern.mid(1); // ".emf"
    if (!fileName.endsWith(suffix, Qt::CaseInsensitive))
        choice.path += suffix;
    return choice;
}

SaveChoice askPictureFile(QWidget *parent, SaveKind kind, const QString &title, const QString &defaultName,
                          bool isSwedish, LastSettings &settings, const PictureFileChooser &chooser)
{
    const bool showsExtensions = platformShowsFileExtensions();
    const std::vector<SaveFilter> filters = saveFilters(kind, isSwedish, true);
    QStringList names;
    for (const SaveFilter &f : filters)
        names << f.description;
    const QString folder =
        pictureSaveFolder(settings.graphSaveFolder, QStandardPaths::writableLocation(QStandardPaths::PicturesLocation),
                          QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    const int preselected = preselectedFilter(filters, settings.graphSaveFormat);
    std::pair<QString, QString> chosen;
    if (chooser) {
        chosen = chooser(title, folder, defaultName, names, preselected);
    } else {
        QFileDialog dialog(parent, title, QDir(folder).filePath(defaultName));
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setFileMode(QFileDialog::AnyFile);
        prepareFileDialog(dialog, isSwedish);
        // Without shown extensions the patterns stay out of sight.
        if (!showsExtensions)
            dialog.setOption(QFileDialog::HideNameFilterDetails);
        dialog.setNameFilters(names);
        dialog.selectNameFilter(names.value(preselected));
        if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
            chosen = {dialog.selectedFiles().constFirst(), dialog.selectedNameFilter()};
    }
    if (chosen.first.isEmpty())
        return SaveChoice{};
    SaveChoice choice = resolveSaveChoice(filters, chosen.first, chosen.second, kind == SaveKind::Chart);
    if (!choice.path.isEmpty())
        settings.graphSaveFolder = QFileInfo(choice.path).absolutePath();
    if (choice.format)
        settings.graphSaveFormat = choice.settingValue;
    return choice;
}

QString createdByLine(bool documentIsSwedish, const QString &applicationTitle, int major, int minor)
{
    return (documentIsSwedish ? QStringLiteral("Skapad av ") : QStringLiteral("Created by ")) + applicationTitle
        + QStringLiteral(" version ") + QString::number(major) + QLatin1Char('.')
        + QStringLiteral("%1").arg(minor, 2, 10, QLatin1Char('0')) + QLatin1Char('.');
}

QString graphPrintFooter(bool documentIsSwedish)
{
    const QVersionNumber version = QVersionNumber::fromString(QCoreApplication::applicationVersion());
    return createdByLine(documentIsSwedish, applicationTitle(), version.majorVersion(), version.minorVersion());
}

void applyPrintFormat(QPrinter &printer, const LastSettings &settings)
{
    if (!settings.printerDeviceName.isEmpty()
        && QPrinterInfo::printerInfo(settings.printerDeviceName).printerName() == settings.printerDeviceName)
        printer.setPrinterName(settings.printerDeviceName);
    const double binding = twipsToMm(std::max(0, settings.printerBindingMargin));
    const double other = twipsToMm(std::max(0, settings.printerOtherMargins));
    printer.setPageMargins(QMarginsF(binding, other, other, other), QPageLayout::Millimeter);
}

bool printPicture(QPrinter &printer, const Picture &picture, const QString &footer)
{
    if (!picture.isValid())
        return false;
    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    const QRect page = printer.pageLayout()
                           .paintRectPixels(printer.resolution())
                           .translated(-printer.pageLayout().paintRectPixels(printer.resolution()).topLeft());
    QFont font(QStringLiteral("Arial"));
    font.setPointSize(10);
    const int footerHeight = footer.isEmpty() ? 0 : QFontMetrics(font, &printer).height() * 2;
    // Pixels of the picture are screen pixels (96 dpi): keep that size on
    // paper when it fits, shrink it when it does not.
    const double natural = printer.resolution() / double(96);
    const double fit = std::min({natural, double(page.width()) / picture.size.width(),
                                 double(std::max(1, page.height() - footerHeight)) / picture.size.height()});
    painter.save();
    painter.scale(fit, fit);
    picture.paint(painter);
    painter.restore();
    if (!footer.isEmpty()) {
        painter.setFont(font);
        painter.setPen(Qt::black);
        const int top = int(picture.size.height() * fit) + footerHeight / 4;
        painter.drawText(QRect(0, top, page.width(), footerHeight), Qt::AlignLeft | Qt::AlignTop, footer);
    }
    return painter.end();
}

bool printPictureWithSettings(const Picture &picture, const LastSettings &settings, const QString &footer)
{
    QPrinter printer(QPrinter::HighResolution);
    applyPrintFormat(printer, settings);
    return printPicture(printer, picture, footer);
}

void previewPicturePrint(QWidget *parent, const Picture &picture, const LastSettings &settings, const QString &footer,
                         bool isSwedish)
{
    QPrinter printer(QPrinter::HighResolution);
    applyPrintFormat(printer, settings);
    QPrintPreviewDialog dialog(&printer, parent);
    dialog.setWindowTitle(pickText(isSwedish, "Print Preview", "Förhandsgranskning"));
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [&](QPrinter *target) { printPicture(*target, picture, footer); });
    dialog.exec();
}

Picture basicGraphPicture(const QSize &clientSize, const BasicGraphPictureOptions &options,
                          const std::function<void(QPainter &, const QRect &area, int scale)> &paint)
{
    const int scale = options.toOffice ? 4 : 2;
    const QSize graph = (clientSize - QSize(20, 20)).expandedTo(QSize(1, 1));
    Picture picture;
    picture.size = (options.whiteSpace ? graph + QSize(20, 20) : graph) * scale;
    const int offset = options.whiteSpace ? 10 * scale : 0;
    const QRect area(QPoint(offset, offset), graph * scale);
    const bool opaque = options.opaque;
    const QColor window = QGuiApplication::palette().color(QPalette::Base);
    const QSize size = picture.size;
    picture.paint = [paint, area, scale, opaque, window, size](QPainter &painter) {
        if (opaque)
            painter.fillRect(QRect(QPoint(0, 0), size), window);
        paint(painter, area, scale);
    };
    return picture;
}

int copyChartPicture(const Picture &picture, qint32 graphCopyFormat, QClipboard *clipboard)
{
    if (const int problem = pictureProblem(picture))
        return problem;
    return setMime(clipboardOr(clipboard), new PictureMimeData(picture, graphCopyFormat == 1),
                   QStringLiteral("image/png"));
}

StatusReporter statusReporter(StatusLine &line)
{
    return [&line](const char *english, const char *swedish, bool autoClear) {
        if (*english)
            line.setStatus(english, swedish, autoClear);
        else
            line.clearStatus();
    };
}

QString clipboardFailureMessage(int result, bool overview, bool isSwedish)
{
    const PictureCopyFailure failure = result == ClipboardTooLarge ? PictureCopyFailure::TooLarge
        : result == ClipboardNoPicture                             ? PictureCopyFailure::NotMade
                                                                   : PictureCopyFailure::Refused;
    return pictureCopyFailureMessage(failure, overview, isSwedish);
}

bool copyGraphPicture(const Picture &picture, const StatusReporter &status, std::optional<qint32> chartCopyFormat,
                      bool isSwedish, const PictureErrorReporter &reportError)
{
    WaitCursor wait;
    status("Copying the graph to the clipboard...", "Kopierar grafen till urklipp...", false);
    const int result = chartCopyFormat ? copyChartPicture(picture, *chartCopyFormat) : copyPictureToClipboard(picture);
    const bool ok = result == ClipboardOk;
    if (ok)
        status("The graph has been copied to the clipboard!", "Grafen har kopierats till urklipp!", true);
    else {
        status("The graph could not be copied to the clipboard!", "Grafen kunde inte kopieras till urklipp!", true);
        const QString text = clipboardFailureMessage(result, false, isSwedish);
        if (reportError)
            reportError(applicationTitle(), text);
        else
            QMessageBox::warning(QApplication::activeWindow(), applicationTitle(), text);
    }
    return ok;
}

bool saveGraphPicture(QWidget *parent, const Picture &picture, SaveKind kind, bool isSwedish, LastSettings &settings,
                      const StatusReporter &status, const PictureFileChooser &chooser,
                      const PictureErrorReporter &reportError)
{
    const auto error = [&](const QString &text) {
        if (reportError)
            reportError(applicationTitle(), text);
        else
            QMessageBox::critical(parent, applicationTitle(), text);
    };
    const bool chart = kind == SaveKind::Chart;
    status("Saving the graph...", chart ? "Sparar grafen..." : "Spara grafen...", false);
    const std::vector<SaveFilter> filters = saveFilters(kind, isSwedish, true);
    const PictureFormat offered = filters[std::size_t(preselectedFilter(filters, settings.graphSaveFormat))].format;
    const QString title =
        chart ? pickText(isSwedish, "Save Graph", "Spara graf") : pickText(isSwedish, "Save Graph", "Spara diagram");
    const SaveChoice choice = askPictureFile(parent, kind, title, QStringLiteral("abc.") + pictureFormatSuffix(offered),
                                             isSwedish, settings, chooser);
    if (choice.path.isEmpty()) {
        status("", "", false);
        return false;
    }
    if (!choice.format) {
        error(pickText(isSwedish, "The graph could not be saved since you did not select what file format you wanted!",
                       "Grafen kunde inte sparas eftersom du inte angav vilket filformat du ville ha!"));
        status("", "", false);
        return false;
    }
    WaitCursor wait;
    // The file's name and the reason tell the user what to change: another
    // folder, a smaller picture, another format.
    WriteFailure failure;
    if (!writePicture(picture, *choice.format, choice.path, &failure)) {
        status("The graph could not be saved!", "Grafen kunde inte sparas!", true);
        error(pickText(isSwedish, "The graph could not be saved!", "Grafen kunde inte sparas!") + QStringLiteral("\n\n")
              + QDir::toNativeSeparators(choice.path) + QStringLiteral("\n\n")
              + writeFailureMessage(failure, isSwedish));
        return false;
    }
    status("The graph has been saved!", "Grafen har sparats!", true);
    return true;
}

bool printGraphPicture(const Picture &picture, const LastSettings &settings, const QString &footer,
                       const StatusReporter &status)
{
    WaitCursor wait;
    status("Printing graph...", "Skriver ut graf...", false);
    const bool ok = printPictureWithSettings(picture, settings, footer);
    if (ok)
        status("Graph printed!", "Graf utskriven!", true);
    else
        status("Graph failed to print!", "Graf kunde inte skrivas ut!", true);
    return ok;
}

} // namespace kel
