// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/pictures/bandedencoders.h"

#include "render/pictures/emfpaintdevice.h"

#include <QHash>
#include <QIODevice>
#include <QPainter>
#include <QThread>
#include <QThreadPool>
#include <QtEndian>

#include <gif_lib.h>
#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <csetjmp>
#include <cstdlib>
#include <cstring>
#include <future>
#include <memory>
#include <vector>

namespace kel {

namespace {

void setError(QString *error, const QString &text)
{
    if (error)
        *error = text;
}

QString writeFailure(const QIODevice &device)
{
    const QString reason = device.errorString();
    return reason.isEmpty() ? QStringLiteral("The file could not be written.") : reason;
}

int dotsPerMeter()
{
    return qRound(MetafileDotsPerInch / 0.0254);
}

} // namespace

PictureBands::PictureBands(const Picture &picture, QImage::Format format, QColor background, qint64 bandBytes)
    : mPicture(picture), mBackground(background)
{
    if (!picture.isValid())
        return;
    const qint64 rowBytes = qint64(picture.size.width()) * 4;
    int rows = picture.size.height();
    if (picture.paintArea)
        rows = int(std::clamp<qint64>(bandBytes / rowBytes, 1, picture.size.height()));
    mStorage = QImage(picture.size.width(), rows, format);
    if (mStorage.isNull())
        return; // too large for memory: not valid
    mBand = mStorage;
    mBandRows = rows;
}

const QImage &PictureBands::draw(int top)
{
    const int rows = std::min(mBandRows, height() - top);
    if (rows != mBand.height()) {
        mBand = QImage(); // lets the storage's pixels be written without a copy
        mBand = QImage(mStorage.bits(), width(), rows, mStorage.bytesPerLine(), mStorage.format());
    }
    mBand.fill(mBackground);
    QPainter painter(&mBand);
    painter.translate(0, -top);
    if (mPicture.paintArea)
        mPicture.paintArea(painter, QRect(0, top, width(), rows));
    else
        mPicture.paint(painter);
    return mBand;
}

// --- PNG -------------------------------------------------------------------

namespace {

struct PngContext {
    QIODevice *device = nullptr;
    QString error;
};

void pngWrite(png_structp png, png_bytep data, size_t length)
{
    auto *context = static_cast<PngContext *>(png_get_io_ptr(png));
    if (context->device->write(reinterpret_cast<const char *>(data), qint64(length)) != qint64(length)) {
        context->error = writeFailure(*context->device);
        png_error(png, "write");
    }
}

void pngFlush(png_structp)
{
}

void pngFailure(png_structp png, png_const_charp message)
{
    auto *context = static_cast<PngContext *>(png_get_error_ptr(png));
    if (context->error.isEmpty())
        context->error = QString::fromUtf8(message);
    png_longjmp(png, 1);
}

void pngWarning(png_structp, png_const_charp)
{
}

// Everything libpng may jump out of lives here, with no object that needs
// destroying on the way out.
bool writePngRows(png_structp png, png_infop info, PictureBands &bands, bool opaque, const PngEncoding &encoding)
{
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_set_IHDR(png, info, png_uint_32(bands.width()), png_uint_32(bands.height()), 8,
                 opaque ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_set_pHYs(png, info, png_uint_32(dotsPerMeter()), png_uint_32(dotsPerMeter()), PNG_RESOLUTION_METER);
    if (opaque) {
        // A sheet repeats each pixel row many times: one fixed filter does
        // as well as the per-row search, which costs more than zlib.
        png_set_filter(png, PNG_FILTER_TYPE_BASE, encoding.filters);
        png_set_compression_level(png, encoding.level);
    }
    png_write_info(png, info);
    if (opaque) {
        // RGB32 rows as they are (B, G, R, unused on a little-endian machine;
        // unused, R, G, B on a big-endian one): libpng drops the unused byte
        // and orders the others as it writes, saving a conversion pass.
        png_set_filler(png, 0, Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? PNG_FILLER_AFTER : PNG_FILLER_BEFORE);
        if (Q_BYTE_ORDER == Q_LITTLE_ENDIAN)
            png_set_bgr(png);
    }
    for (int top = 0; top < bands.height(); top += bands.bandRows()) {
        const QImage &band = bands.draw(top);
        const QImage rows = opaque ? band : band.convertToFormat(QImage::Format_RGBA8888);
        for (int y = 0; y < rows.height(); ++y)
            png_write_row(png, rows.constScanLine(y));
    }
    png_write_end(png, info);
    return true;
}

// --- PNG deflated in pieces on several threads ---------------------------

// The PNG filter type of a single PNG_FILTER_ bit; -1 for none or several.
int singleFilterType(int filters)
{
    switch (filters) {
    case PNG_FILTER_NONE: return PNG_FILTER_VALUE_NONE;
    case PNG_FILTER_SUB: return PNG_FILTER_VALUE_SUB;
    case PNG_FILTER_UP: return PNG_FILTER_VALUE_UP;
    case PNG_FILTER_AVG: return PNG_FILTER_VALUE_AVG;
    case PNG_FILTER_PAETH: return PNG_FILTER_VALUE_PAETH;
    default: return -1;
    }
}

int paethPredictor(int left, int above, int aboveLeft)
{
    const int p = left + above - aboveLeft;
    const int pa = std::abs(p - left), pb = std::abs(p - above), pc = std::abs(p - aboveLeft);
    if (pa <= pb && pa <= pc)
        return left;
    return pb <= pc ? above : aboveLeft;
}

// Eight byte-wise differences a - b at once, no borrow crossing a byte.
quint64 subtractBytes(quint64 a, quint64 b)
{
    constexpr quint64 High = 0x8080808080808080ULL;
    return ((a | High) - (b & ~High)) ^ ((a ^ ~b) & High);
}

// One filtered row: the type byte, then each byte of `row` (RGB) less its
// prediction from the bytes to the left and above (zeros above the first row).
void filterRow(int type, const uchar *row, const uchar *above, qsizetype bytes, uchar *out)
{
    constexpr qsizetype Left = 3; // bytes per pixel
    *out++ = uchar(type);
    switch (type) {
    case PNG_FILTER_VALUE_NONE: std::memcpy(out, row, std::size_t(bytes)); return;
    case PNG_FILTER_VALUE_SUB:
        for (qsizetype i = 0; i < bytes; ++i)
            out[i] = uchar(row[i] - (i >= Left ? row[i - Left] : 0));
        return;
    case PNG_FILTER_VALUE_UP: {
        // The sheet's filter: eight bytes a step, as the compiler will not
        // vectorise it at the build's optimisation level.
        qsizetype i = 0;
        for (; i + 8 <= bytes; i += 8) {
            quint64 a, b;
            std::memcpy(&a, row + i, 8);
            std::memcpy(&b, above + i, 8);
            const quint64 d = subtractBytes(a, b);
            std::memcpy(out + i, &d, 8);
        }
        for (; i < bytes; ++i)
            out[i] = uchar(row[i] - above[i]);
        return;
    }
    case PNG_FILTER_VALUE_AVG:
        for (qsizetype i = 0; i < bytes; ++i)
            out[i] = uchar(row[i] - ((i >= Left ? row[i - Left] : 0) + above[i]) / 2);
        return;
    default:
        for (qsizetype i = 0; i < bytes; ++i)
            out[i] = uchar(row[i]
                           - paethPredictor(i >= Left ? row[i - Left] : 0, above[i], i >= Left ? above[i - Left] : 0));
        return;
    }
}

// A row's pixels as R, G, B bytes. Each pixel is stored as four bytes, the
// fourth overwritten by the next pixel: `out` has room for one byte more.
void rgbRow(const QImage &band, int y, uchar *out)
{
    const auto *pixels = reinterpret_cast<const QRgb *>(band.constScanLine(y));
    const int width = band.width(); // not read again for every pixel
    for (int x = 0; x < width; ++x)
        qToBigEndian(quint32(pixels[x] << 8), out + 3 * qsizetype(x));
}

// Adler-32 as zlib computes it, quicker over the runs of zeros the Up
// filter leaves where rows repeat: a zero adds nothing to the first sum,
// and the first sum once to the second.
uLong adler32OfRows(const uchar *data, qsizetype size)
{
    constexpr quint64 Base = 65521;
    constexpr qsizetype Block = qsizetype(1) << 20; // sums exact in 64 bits over this many bytes
    quint64 a = 1, b = 0;
    for (qsizetype i = 0; i < size;) {
        const qsizetype end = std::min(size, i + Block);
        for (; i + 8 <= end; i += 8) {
            quint64 word;
            std::memcpy(&word, data + i, 8);
            if (word == 0) {
                b += 8 * a;
                continue;
            }
            for (qsizetype k = i; k < i + 8; ++k) {
                a += data[k];
                b += a;
            }
        }
        for (; i < end; ++i) {
            a += data[i];
            b += a;
        }
        a %= Base;
        b %= Base;
    }
    return uLong((b << 16) | a);
}

constexpr qsizetype DeflateWindow = 32 * 1024;

// A run of filtered rows deflated on its own: raw deflate primed with the
// 32 KB of the stream before it, ended on a byte boundary (a sync flush) so
// that the pieces join into one stream; the last piece ends the stream.
struct DeflatePiece {
    z_stream stream{};
    bool started = false;
    QByteArray dictionary;
    QByteArray input;
    QByteArray output;
    uLong adler = 0;
    bool last = false;
    bool ok = false;
    std::promise<void> finished;
    std::future<void> done;

    explicit DeflatePiece(int level)
    {
        // A raw stream: the zlib header and the checksum of the whole are
        // written around the pieces.
        started = deflateInit2(&stream, level, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY) == Z_OK;
    }
    ~DeflatePiece()
    {
        if (started)
            deflateEnd(&stream);
    }
    DeflatePiece(const DeflatePiece &) = delete;
    DeflatePiece &operator=(const DeflatePiece &) = delete;

    void deflatePiece()
    {
        ok = false;
        if (!started || deflateReset(&stream) != Z_OK)
            return;
        if (!dictionary.isEmpty()
            && deflateSetDictionary(&stream, reinterpret_cast<const Bytef *>(dictionary.constData()),
                                    uInt(dictionary.size()))
                != Z_OK)
            return;
        const auto *in = reinterpret_cast<const Bytef *>(input.constData());
        adler = adler32OfRows(in, input.size());
        stream.next_in = const_cast<Bytef *>(in);
        stream.avail_in = uInt(input.size());
        const int flush = last ? Z_FINISH : Z_SYNC_FLUSH;
        output.resize(std::max<qsizetype>(input.size() / 32, 64 * 1024));
        qsizetype used = 0;
        for (;;) {
            stream.next_out = reinterpret_cast<Bytef *>(output.data() + used);
            stream.avail_out = uInt(output.size() - used);
            const int result = deflate(&stream, flush);
            used = output.size() - qsizetype(stream.avail_out);
            if (result == Z_STREAM_ERROR)
                return;
            if (last ? result == Z_STREAM_END : stream.avail_in == 0 && stream.avail_out > 0)
                break;
            output.resize(output.size() * 2);
        }
        output.resize(used);
        ok = true;
    }
};

QByteArray pngChunk(const char *type, const QByteArray &data)
{
    QByteArray chunk(8, '\0');
    qToBigEndian(quint32(data.size()), chunk.data());
    std::memcpy(chunk.data() + 4, type, 4);
    chunk += data;
    const uLong crc = crc32_z(crc32_z(0, nullptr, 0), reinterpret_cast<const Bytef *>(chunk.constData() + 4),
                              std::size_t(chunk.size() - 4));
    char tail[4];
    qToBigEndian(quint32(crc), tail);
    chunk.append(tail, 4);
    return chunk;
}

QByteArray bigEndian32(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

// The two bytes before a zlib stream: deflate with a 32 KB window, the
// level class zlib itself would record, and the check bits.
QByteArray zlibHeader(int level)
{
    const int levelClass = level < 2 ? 0 : level < 6 ? 1 : level == 6 ? 2 : 3;
    int header = (0x78 << 8) | (levelClass << 6);
    header += 31 - header % 31;
    QByteArray bytes(2, '\0');
    qToBigEndian(quint16(header), bytes.data());
    return bytes;
}

class PiecewisePngWriter
{
public:
    PiecewisePngWriter(QIODevice &device, const PngEncoding &encoding) : mDevice(device), mEncoding(encoding) { }

    bool write(PictureBands &bands, int filterType)
    {
        // Two pieces per thread keep every thread busy while the next band
        // is drawn; on many processors, what waits in memory sets the limit.
        int threads = std::max(1, mEncoding.threads > 0 ? mEncoding.threads : QThread::idealThreadCount());
        const int pieces = int(std::clamp<qint64>(PiecesInMemoryBytes / std::max<qint64>(mEncoding.pieceBytes, 1), 2,
                                                  2 * qint64(threads)));
        threads = std::min(threads, pieces);
        for (int i = 0; i < pieces; ++i)
            mPieces.push_back(std::make_unique<DeflatePiece>(mEncoding.level));
        mPool.setMaxThreadCount(threads);

        QByteArray head("\x89PNG\r\n\x1a\n", 8);
        QByteArray header = bigEndian32(quint32(bands.width())) + bigEndian32(quint32(bands.height()));
        header += QByteArray("\x08\x02\x00\x00\x00", 5); // 8 bits, RGB, deflate, filters, no interlace
        head += pngChunk("IHDR", header);
        head += pngChunk("pHYs",
                         bigEndian32(quint32(dotsPerMeter())) + bigEndian32(quint32(dotsPerMeter()))
                             + QByteArray(1, '\x01'));
        if (!put(head))
            return false;

        const qsizetype rowBytes = qsizetype(bands.width()) * 3;
        const qsizetype filteredBytes = rowBytes + 1;
        const int pieceRows = int(std::clamp<qint64>(mEncoding.pieceBytes / filteredBytes, 1, bands.height()));
        QByteArray rows[2] = {QByteArray(rowBytes + 1, '\0'), QByteArray(rowBytes + 1, '\0')}; // this, above
        int current = 0;
        QByteArray window; // the stream's last 32 KB so far
        for (int top = 0; top < bands.height(); top += bands.bandRows()) {
            const QImage &band = bands.draw(top);
            for (int y = 0; y < band.height(); y += pieceRows) {
                const int count = std::min(pieceRows, band.height() - y);
                DeflatePiece &piece = *mPieces[std::size_t(mQueued % mPieces.size())];
                if (mQueued - mWritten == qsizetype(mPieces.size()) && !writeOldest())
                    return false;
                piece.input.resize(filteredBytes * count);
                auto *out = reinterpret_cast<uchar *>(piece.input.data());
                for (int r = 0; r < count; ++r) {
                    rgbRow(band, y + r, reinterpret_cast<uchar *>(rows[current].data()));
                    filterRow(filterType, reinterpret_cast<const uchar *>(rows[current].constData()),
                              reinterpret_cast<const uchar *>(rows[1 - current].constData()), rowBytes,
                              out + filteredBytes * r);
                    current = 1 - current;
                }
                piece.dictionary = window;
                window = (window + piece.input.right(DeflateWindow)).right(DeflateWindow);
                piece.last = top + y + count == bands.height();
                piece.finished = std::promise<void>();
                piece.done = piece.finished.get_future();
                DeflatePiece *p = &piece;
                mPool.start([p] {
                    p->deflatePiece();
                    p->finished.set_value();
                });
                ++mQueued;
            }
        }
        while (mWritten < mQueued)
            if (!writeOldest())
                return false;
        return put(pngChunk("IEND", QByteArray()));
    }

    QString error;

private:
    static constexpr qint64 PiecesInMemoryBytes = qint64(8) * 1024 * 1024;

    bool put(const QByteArray &bytes)
    {
        if (mDevice.write(bytes) == bytes.size())
            return true;
        error = writeFailure(mDevice);
        return false;
    }

    // Waits for the oldest piece and writes it as one IDAT chunk.
    bool writeOldest()
    {
        DeflatePiece &piece = *mPieces[std::size_t(mWritten % mPieces.size())];
        piece.done.wait();
        ++mWritten;
        if (!piece.ok) {
            error = QStringLiteral("The PNG file could not be compressed.");
            return false;
        }
        QByteArray data = mWritten == 1 ? zlibHeader(mEncoding.level) : QByteArray();
        data += piece.output;
        mAdler = mWritten == 1 ? piece.adler : adler32_combine(mAdler, piece.adler, piece.input.size());
        if (piece.last)
            data += bigEndian32(quint32(mAdler));
        return put(pngChunk("IDAT", data));
    }

    QIODevice &mDevice;
    const PngEncoding &mEncoding;
    std::vector<std::unique_ptr<DeflatePiece>> mPieces;
    // Declared after the pieces: destroyed first, it waits for the pieces
    // still being deflated when a write fails.
    QThreadPool mPool;
    qsizetype mQueued = 0;
    qsizetype mWritten = 0;
    uLong mAdler = 0;
};

} // namespace

bool writePng(const Picture &picture, QIODevice &device, QString *error, qint64 bandBytes, const PngEncoding &encoding)
{
    const bool opaque = picture.opaque;
    PictureBands bands(picture, opaque ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied,
                       opaque ? QColor(Qt::white) : QColor(Qt::transparent), bandBytes);
    if (!bands.isValid()) {
        setError(error, QStringLiteral("The picture is too large to be made as an image."));
        return false;
    }
    const int filterType = singleFilterType(encoding.filters);
    if (opaque && encoding.parallel && filterType >= 0) {
        PiecewisePngWriter writer(device, encoding);
        if (writer.write(bands, filterType))
            return true;
        setError(error, writer.error);
        return false;
    }
    PngContext context;
    context.device = &device;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &context, pngFailure, pngWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!info) {
        png_destroy_write_struct(&png, nullptr);
        setError(error, QStringLiteral("The PNG file could not be started."));
        return false;
    }
    png_set_write_fn(png, &context, pngWrite, pngFlush);
    const bool ok = writePngRows(png, info, bands, opaque, encoding);
    png_destroy_write_struct(&png, &info);
    if (!ok)
        setError(error, context.error);
    return ok;
}

// --- BMP -------------------------------------------------------------------

bool writeBmp(const Picture &picture, QIODevice &device, QString *error, qint64 bandBytes)
{
    PictureBands bands(picture, QImage::Format_RGB32, Qt::white, bandBytes);
    if (!bands.isValid()) {
        setError(error, QStringLiteral("The picture is too large to be made as an image."));
        return false;
    }
    const qint64 rowBytes = (qint64(bands.width()) * 24 + 31) / 32 * 4;
    const qint64 imageBytes = rowBytes * bands.height();
    constexpr int HeaderBytes = 14 + 40;
    if (HeaderBytes + imageBytes > qint64(0xFFFFFFFF)) {
        setError(error, QStringLiteral("The picture is too large for a BMP file."));
        return false;
    }
    // BITMAPFILEHEADER and BITMAPINFOHEADER, little-endian.
    QByteArray header(HeaderBytes, '\0');
    auto put16 = [&](int at, quint16 v) { qToLittleEndian(v, header.data() + at); };
    auto put32 = [&](int at, quint32 v) { qToLittleEndian(v, header.data() + at); };
    header[0] = 'B';
    header[1] = 'M';
    put32(2, quint32(HeaderBytes + imageBytes));
    put32(10, HeaderBytes);
    put32(14, 40);
    put32(18, quint32(bands.width()));
    put32(22, quint32(bands.height())); // positive: rows from the bottom up
    put16(26, 1);
    put16(28, 24);
    put32(30, 0); // BI_RGB
    put32(34, quint32(imageBytes));
    put32(38, quint32(dotsPerMeter()));
    put32(42, quint32(dotsPerMeter()));
    if (device.write(header) != header.size()) {
        setError(error, writeFailure(device));
        return false;
    }
    // The file starts with the bottom row: bands are drawn from the bottom.
    const int bandCount = (bands.height() + bands.bandRows() - 1) / bands.bandRows();
    QByteArray row(rowBytes, '\0'); // the padding stays zero
    for (int band = bandCount - 1; band >= 0; --band) {
        const QImage image = bands.draw(band * bands.bandRows()).convertToFormat(QImage::Format_BGR888);
        for (int y = image.height() - 1; y >= 0; --y) {
            std::memcpy(row.data(), image.constScanLine(y), std::size_t(image.width()) * 3);
            if (device.write(row) != row.size()) {
                setError(error, writeFailure(device));
                return false;
            }
        }
    }
    return true;
}

// --- GIF -------------------------------------------------------------------

namespace {

int gifWrite(GifFileType *gif, const GifByteType *data, int length)
{
    auto *device = static_cast<QIODevice *>(gif->UserData);
    return int(device->write(reinterpret_cast<const char *>(data), length));
}

QString gifError(int code)
{
    const char *text = GifErrorString(code);
    return QString::fromUtf8(text ? text : "GIF error") + QStringLiteral(" (%1)").arg(code);
}

// The level (0-5) of the colour cube nearest to a channel value.
int cubeLevel(int channel)
{
    return (channel * 5 + 127) / 255;
}

// Colours in the picture, up to one more than a palette holds.
std::vector<QRgb> collectColours(PictureBands &bands)
{
    QHash<QRgb, bool> seen;
    for (int top = 0; top < bands.height() && seen.size() <= 256; top += bands.bandRows()) {
        const QImage &image = bands.draw(top);
        QRgb last = 0;
        bool any = false;
        for (int y = 0; y < image.height() && seen.size() <= 256; ++y) {
            const auto *pixels = reinterpret_cast<const QRgb *>(image.constScanLine(y));
            for (int x = 0; x < image.width(); ++x) {
                const QRgb c = pixels[x] | 0xFF000000;
                if (any && c == last)
                    continue;
                seen.insert(c, true);
                last = c;
                any = true;
            }
        }
    }
    std::vector<QRgb> colours(seen.keyBegin(), seen.keyEnd());
    std::sort(colours.begin(), colours.end());
    return colours;
}

} // namespace

bool writeGif(const Picture &picture, QIODevice &device, QString *error, qint64 bandBytes)
{
    PictureBands bands(picture, QImage::Format_RGB32, Qt::white, bandBytes);
    if (!bands.isValid()) {
        setError(error, QStringLiteral("The picture is too large to be made as an image."));
        return false;
    }
    if (bands.width() > 0xFFFF || bands.height() > 0xFFFF) {
        setError(error, QStringLiteral("The picture is too large for a GIF file."));
        return false;
    }
    // Drawings have few colours: an exact palette when they fit in 256. A
    // single band is kept from the count to the writing.
    std::vector<QRgb> colours = collectColours(bands);
    const bool exact = colours.size() <= 256;
    const bool oneBand = bands.bandRows() >= bands.height();
    QHash<QRgb, int> indexOf;
    std::vector<GifColorType> palette;
    if (exact) {
        for (std::size_t i = 0; i < colours.size(); ++i) {
            indexOf.insert(colours[i], int(i));
            palette.push_back(GifColorType{GifByteType(qRed(colours[i])), GifByteType(qGreen(colours[i])),
                                           GifByteType(qBlue(colours[i]))});
        }
    } else {
        for (int r = 0; r < 6; ++r)
            for (int g = 0; g < 6; ++g)
                for (int b = 0; b < 6; ++b)
                    palette.push_back(GifColorType{GifByteType(r * 51), GifByteType(g * 51), GifByteType(b * 51)});
    }
    int size = 2;
    while (size < int(palette.size()))
        size *= 2;
    palette.resize(std::size_t(size), GifColorType{0, 0, 0});

    int code = 0;
    GifFileType *gif = EGifOpen(&device, gifWrite, &code);
    if (!gif) {
        setError(error, gifError(code));
        return false;
    }
    ColorMapObject *map = GifMakeMapObject(size, palette.data());
    bool ok = map && EGifPutScreenDesc(gif, bands.width(), bands.height(), 8, 0, map) == GIF_OK
        && EGifPutImageDesc(gif, 0, 0, bands.width(), bands.height(), false, nullptr) == GIF_OK;
    std::vector<GifPixelType> line(std::size_t(bands.width()));
    for (int top = 0; ok && top < bands.height(); top += bands.bandRows()) {
        const QImage &image = oneBand ? bands.band() : bands.draw(top);
        for (int y = 0; ok && y < image.height(); ++y) {
            const auto *pixels = reinterpret_cast<const QRgb *>(image.constScanLine(y));
            QRgb last = 0;
            int lastIndex = -1;
            for (int x = 0; x < image.width(); ++x) {
                const QRgb c = pixels[x] | 0xFF000000;
                if (lastIndex < 0 || c != last) {
                    last = c;
                    lastIndex = exact ? indexOf.value(c)
                                      : (cubeLevel(qRed(c)) * 6 + cubeLevel(qGreen(c))) * 6 + cubeLevel(qBlue(c));
                }
                line[std::size_t(x)] = GifPixelType(lastIndex);
            }
            ok = EGifPutLine(gif, line.data(), image.width()) == GIF_OK;
        }
    }
    if (!ok)
        code = gif->Error;
    GifFreeMapObject(map);
    int closeCode = 0;
    if (EGifCloseFile(gif, &closeCode) != GIF_OK && ok) {
        ok = false;
        code = closeCode;
    }
    if (!ok)
        setError(error, gifError(code));
    return ok;
}

} // namespace kel
