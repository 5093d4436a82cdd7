#include "ui/itemicon.h"

#include "platform/bundle.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "ui/theme.h"

#include <QApplication>
#include <QPainter>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qsizetype headLength = 8; // of the file and of each element
constexpr qreal roundness = 0.2; // of the side
constexpr qreal heightOfLetters = 0.32;
constexpr int mostLetters = 3;
constexpr qreal reachOfPlus = 0.18; // of the side, from its middle
constexpr qreal strokeOfPlus = 1.6; // pixels
const QByteArray pngSignature = "\x89PNG\r\n\x1a\n"_ba;

quint32 lengthAt(const QByteArray &bytes, qsizetype offset)
{
    return qFromBigEndian<quint32>(bytes.constData() + offset + 4);
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

/// Something can be put here.
void drawPlus(QPainter &painter, const QRectF &square)
{
    const qreal reach = square.width() * reachOfPlus;
    painter.setPen(QPen(theme::colourOf(theme::Meaning::quiet, QApplication::palette()), strokeOfPlus,
                        Qt::SolidLine, Qt::RoundCap));
    for (const QPointF arm : {QPointF(reach, 0), QPointF(0, reach)})
        painter.drawLine(square.center() - arm, square.center() + arm);
}

std::optional<QPixmap> ownPicture(const platform::FileService &files, const QString &bundle)
{
    const QString file = iconFileOf(files, bundle);
    const auto png = file.isEmpty() ? std::nullopt : itemicon::pictureIn(files.readFile(file).valueOr({}));
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

QPixmap itemicon::pictureOfKind(const QString &kind, int side)
{
    QPixmap picture(QSize(side, side) * qApp->devicePixelRatio());
    picture.setDevicePixelRatio(qApp->devicePixelRatio());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette palette = QApplication::palette();
    const QRectF square = QRectF(0, 0, side, side).adjusted(1, 1, -1, -1);
    const bool isEmpty = kind.isEmpty();
    painter.setPen(isEmpty ? QPen(theme::outline(palette), 1, Qt::DashLine) : QPen(Qt::NoPen));
    if (!isEmpty)
        painter.setBrush(theme::colourOf(theme::Meaning::underway, palette));
    painter.drawRoundedRect(square, side * roundness, side * roundness);
    if (isEmpty)
        drawPlus(painter, square);
    QFont font = QApplication::font();
    font.setBold(true);
    font.setPixelSize(qMax(6, int(side * heightOfLetters)));
    painter.setFont(font);
    painter.setPen(palette.color(QPalette::Base));
    painter.drawText(square, Qt::AlignCenter, kind.toUpper().left(mostLetters));
    return picture;
}

QPixmap itemicon::pictureOf(const platform::FileService &files, const QString &path, int side)
{
    const auto picture = path.isEmpty() ? std::nullopt : ownPicture(files, path);
    if (!picture)
        return pictureOfKind(itempath::lowerExtension(path), side);
    const qreal ratio = qApp->devicePixelRatio();
    QPixmap scaled =
        picture->scaled(QSize(side, side) * ratio, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    scaled.setDevicePixelRatio(ratio);
    return scaled;
}

} // namespace sealwright
