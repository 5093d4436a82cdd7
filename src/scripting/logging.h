#pragma once

#include <QLoggingCategory>

namespace sealwright {

/// What scripts ask, and what they are refused.
/// Off unless `QT_LOGGING_RULES` turns `sealwright.scripting.debug` on. Any thread.
inline const QLoggingCategory &scriptingLogging()
{
    static const QLoggingCategory category("sealwright.scripting", QtCriticalMsg);
    return category;
}

} // namespace sealwright
