// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/pictures/picture.h"

#include <QFileInfo>

namespace kel {

std::optional<PictureFormat> pictureFormatForFileName(const QString &fileName)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    static const struct {
        const char *suffix;
        PictureFormat format;
    } known[] = {{"emf", PictureFormat::Emf}, {"wmf", PictureFormat::Wmf}, {"png", PictureFormat::Png},
                 {"bmp", PictureFormat::Bmp}, {"jpg", PictureFormat::Jpg}, {"jpeg", PictureFormat::Jpg},
                 {"gif", PictureFormat::Gif}, {"svg", PictureFormat::Svg}, {"pdf", PictureFormat::Pdf}};
    for (const auto &k : known)
        if (suffix == QLatin1String(k.suffix))
            return k.format;
    return std::nullopt;
}

QString pictureFormatSuffix(PictureFormat format)
{
    switch (format) {
    case PictureFormat::Emf: return QStringLiteral("emf");
    case PictureFormat::Wmf: return QStringLiteral("wmf");
    case PictureFormat::Png: return QStringLiteral("png");
    case PictureFormat::Bmp: return QStringLiteral("bmp");
    case PictureFormat::Jpg: return QStringLiteral("jpg");
    case PictureFormat::Gif: return QStringLiteral("gif");
    case PictureFormat::Svg: return QStringLiteral("svg");
    case PictureFormat::Pdf: return QStringLiteral("pdf");
    }
    return QString();
}

} // namespace kel
