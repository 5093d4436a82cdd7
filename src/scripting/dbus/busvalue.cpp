#include "scripting/dbus/busvalue.h"

#include <QDBusArgument>
#include <QDBusMetaType>

using namespace Qt::StringLiterals;

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

} // namespace

namespace busvalue {

void registerTypes()
{
    qDBusRegisterMetaType<BusInterfaceProperties>();
    qDBusRegisterMetaType<BusManagedObjects>();
}

QVariant toBus(const QVariant &value)
{
    const bool isUrl = value.metaType() == QMetaType::fromType<QUrl>();
    if (!value.isValid() || (isUrl && value.toUrl().isEmpty()))
        return QVariantList();
    return isUrl ? value.toUrl().toString(QUrl::FullyEncoded) : value;
}

std::optional<QVariant> fromBus(const QVariant &value, const QString &signature)
{
    if (standsForNoValue(value))
        return QVariant();
    if (signatureOf(value) != signature)
        return std::nullopt;
    return value;
}

QUrl fileUrl(const QString &text)
{
    return text.startsWith("file:///"_L1) ? QUrl(text) : QUrl();
}

} // namespace busvalue
