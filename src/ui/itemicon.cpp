#include "ui/itemicon.h"

#include "platform/bundle.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"

#include <QApplication>
#include <QPixmap>
#include <QStyle>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype headLength = 8; // of the file and of each element
const QByteArray pngSignature = "\x89PNG\r\n\x1a\n"_ba;

quint32 lengthAt(const QByteArray &bytes, qsizetype offset)
{
    return qFromBigEndian<quint32>(bytes.constData() + offset + 4);
}

struct KindIcon {
    QString extension;
    QString themeName; ///< freedesktop.org's Icon Naming Specification
    QStyle::StandardPixmap fallback;
};

const KindIcon &kindIcon(const QString &extension)
{
    static const QList<KindIcon> kinds{
        {u"app"_s, u"application-x-executable"_s, QStyle::SP_DesktopIcon},
        {u"pkg"_s, u"package-x-generic"_s, QStyle::SP_DriveFDIcon},
        {u"dmg"_s, u"media-optical"_s, QStyle::SP_DriveHDIcon},
        {u"plugin"_s, u"application-x-addon"_s, QStyle::SP_FileDialogDetailedView},
        {u"fmplugin"_s, u"application-x-addon"_s, QStyle::SP_FileDialogDetailedView},
    };
    static const KindIcon other{{}, u"text-x-generic"_s, QStyle::SP_FileIcon};
    for (const KindIcon &kind : kinds) {
        if (kind.extension == extension)
            return kind;
    }
    return other;
}

QString iconFileOf(const platform::FileService &files, const QString &bundle)
{
    QString name = platform::informationText(files, bundle, u"CFBundleIconFile"_s);
    if (name.isEmpty() || name.contains(u'/'))
        return {};
    if (itempath::lowerExtension(name) != "icns"_L1)
        name += u".icns"_s;
    return itempath::appending(bundle, u"Contents/Resources/"_s + name);
}

std::optional<QPixmap> ownPicture(const platform::FileService &files, const QString &bundle)
{
    const QString file = iconFileOf(files, bundle);
    const auto icns = file.isEmpty() ? std::nullopt : files.readFile(file);
    const auto png = icns ? itemicon::pictureIn(*icns) : std::nullopt;
    QPixmap picture;
    return png && picture.loadFromData(*png, "PNG") ? std::optional(picture) : std::nullopt;
}

} // namespace

std::optional<QByteArray> itemicon::pictureIn(const QByteArray &icns)
{
    if (!icns.startsWith("icns"))
        return std::nullopt;
    std::optional<QByteArray> largest;
    for (qsizetype offset = headLength; offset + headLength <= icns.size();) {
        const qsizetype length = lengthAt(icns, offset);
        if (length < headLength || length > icns.size() - offset)
            break; // damaged from here on
        const QByteArray data = icns.mid(offset + headLength, length - headLength);
        if (data.startsWith(pngSignature) && (!largest || data.size() > largest->size()))
            largest = data;
        offset += length;
    }
    return largest;
}

QIcon itemicon::iconOf(const platform::FileService &files, const QString &path)
{
    if (const auto picture = ownPicture(files, path))
        return *picture;
    const KindIcon &kind = kindIcon(itempath::lowerExtension(path));
    return QIcon::fromTheme(kind.themeName, QApplication::style()->standardIcon(kind.fallback));
}
