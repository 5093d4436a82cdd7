#include "scripting/dbus/busvalue.h"

#include "platform/itempath.h"
#include "scripting/dbus/busnames.h"

#include <QDBusArgument>
#include <QDBusMetaType>

#include <limits>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

QString signatureOf(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<QDBusArgument>())
        return value.value<QDBusArgument>().currentSignature();
    return QString::fromLatin1(QDBusMetaType::typeToSignature(value.metaType()));
}

bool standsForNoValue(const QVariant &value)
{
    return signatureOf(value) == "av"_L1 && qdbus_cast<QVariantList>(value).isEmpty();
}

const QString wholeNumber = u"x"_s;
const QString number = u"d"_s;

/// Clients send a number in whatever width their language gives it.
bool isWholeNumber(const QString &signature)
{
    static const QStringList widths{u"y"_s, u"n"_s, u"q"_s, u"i"_s, u"u"_s, u"x"_s, u"t"_s};
    return widths.contains(signature);
}

/// Nothing for one that is too large.
std::optional<QVariant> wholeNumberFrom(const QVariant &value)
{
    const QString signature = signatureOf(value);
    constexpr auto greatest = static_cast<qulonglong>(std::numeric_limits<qlonglong>::max());
    if (!isWholeNumber(signature) || (signature == "t"_L1 && value.toULongLong() > greatest))
        return std::nullopt;
    return QVariant(value.toLongLong());
}

std::optional<QVariant> numberFrom(const QVariant &value)
{
    const QString signature = signatureOf(value);
    return isWholeNumber(signature) || signature == number ? std::optional<QVariant>(value.toDouble())
                                                           : std::nullopt;
}

} // namespace

namespace busvalue {

void registerTypes()
{
    qDBusRegisterMetaType<BusInterfaceProperties>();
    qDBusRegisterMetaType<BusManagedObjects>();
    qDBusRegisterMetaType<platform::QDRect>();
}

QVariant toBus(const QVariant &value)
{
    const bool isUrl = value.metaType() == QMetaType::fromType<QUrl>();
    if (!value.isValid() || (isUrl && value.toUrl().isEmpty()))
        return QVariantList();
    if (value.metaType() == QMetaType::fromType<QString>())
        return withoutNulls(value.toString());
    return isUrl ? value.toUrl().toString(QUrl::FullyEncoded) : value;
}

bool isTooLong(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<QString>())
        return value.toString().size() > mostCharacters;
    if (signatureOf(value) != "as"_L1)
        return false;
    qsizetype all = 0;
    for (const QString &text : qdbus_cast<QStringList>(value))
        all += text.size() + 1; // an empty one counts as well
    return all > mostCharacters;
}

QString withoutNulls(QString text)
{
    return text.replace(QChar::Null, QChar::ReplacementCharacter);
}

std::optional<QVariant> fromBus(const QVariant &value, const QString &signature)
{
    if (standsForNoValue(value))
        return QVariant();
    if (signature == wholeNumber)
        return wholeNumberFrom(value);
    if (signature == number)
        return numberFrom(value);
    return signatureOf(value) == signature ? std::optional(value) : std::nullopt;
}

QUrl fileUrl(const QString &text)
{
    const QUrl url = bus::isFileUrl(text) ? QUrl(text) : QUrl();
    const QString path = url.toLocalFile();
    if (path.contains(QChar::Null)) // no file has such a name
        return {};
    const QString plain = itempath::withoutDots(path);
    const bool isPlain = path.isEmpty() || plain == path || plain + u'/' == path;
    return isPlain ? url : itempath::toUrl(plain);
}

} // namespace busvalue

} // namespace sealwright
