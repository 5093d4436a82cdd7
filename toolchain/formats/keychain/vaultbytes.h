#pragma once

#include <QByteArray>
#include <QJsonValue>
#include <QString>

namespace toolchain {

/// Bytes as the vault's JSON has them (RFC 4648, section 4). What is no such text has none.
[[nodiscard]] inline QString base64(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toBase64());
}

[[nodiscard]] inline QByteArray bytesIn(const QJsonValue &value)
{
    return QByteArray::fromBase64(value.toString().toLatin1());
}

} // namespace toolchain
