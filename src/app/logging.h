#pragma once

#include <QLoggingCategory>

namespace sealwright {

/// What launch finds, and what comes from outside.
/// Off unless `QT_LOGGING_RULES` turns `sealwright.app.debug` on. Any thread.
inline const QLoggingCategory &appLogging()
{
    static const QLoggingCategory category("sealwright.app", QtCriticalMsg);
    return category;
}

} // namespace sealwright
