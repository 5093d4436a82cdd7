#pragma once

#include <QLoggingCategory>

namespace sealwright {

/// The steps of runs, and why they fail.
/// Off unless `QT_LOGGING_RULES` turns `sealwright.run.debug` on. Any thread.
inline const QLoggingCategory &runLogging()
{
    static const QLoggingCategory category("sealwright.run", QtCriticalMsg);
    return category;
}

} // namespace sealwright
