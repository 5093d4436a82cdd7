#pragma once

#include <QByteArray>
#include <QString>

#include "platform/result.h"

namespace toolchain {

/// What this machine knows of an upload besides what the service tells. No credentials.
struct Receipt {
    QString name;
    QByteArray sha256; ///< 64 lower-case hexadecimal digits; empty if there is no receipt
    QString bundleIdentifier;
};

/// Keeps the receipt of an upload, by its request identifier.
[[nodiscard]] platform::Outcome keepReceipt(const QString &id, const Receipt &receipt);

/// Empty fields if there is none.
[[nodiscard]] Receipt receiptOf(const QString &id);

/// Keeps the service's log of a request where only its owner may read it; answers its path, or nothing on
/// failure.
[[nodiscard]] QString keepLog(const QString &id, const QByteArray &log);

} // namespace toolchain
