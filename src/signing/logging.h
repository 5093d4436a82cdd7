#pragma once

#include <QLoggingCategory>

namespace sealwright {

/// What is found to be signed.
/// Off unless `QT_LOGGING_RULES` turns `sealwright.signing.debug` on. Any thread.
inline const QLoggingCategory &signingLogging()
{
    static const QLoggingCategory category("sealwright.signing", QtCriticalMsg);
    return category;
}

} // namespace sealwright
