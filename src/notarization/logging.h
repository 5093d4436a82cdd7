#pragma once

#include <QLoggingCategory>

namespace sealwright {

/// What the service has answered.
/// Off unless `QT_LOGGING_RULES` turns `sealwright.notarization.debug` on. Any thread.
inline const QLoggingCategory &notarizationLogging()
{
    static const QLoggingCategory category("sealwright.notarization", QtCriticalMsg);
    return category;
}

} // namespace sealwright
