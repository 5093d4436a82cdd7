#pragma once

#include <QLoggingCategory>

namespace sealwright {

/// Which tools run, and how they end; never with what.
/// Off unless `QT_LOGGING_RULES` turns `sealwright.tools.debug` on. Any thread.
inline const QLoggingCategory &toolsLogging()
{
    static const QLoggingCategory category("sealwright.tools", QtCriticalMsg);
    return category;
}

} // namespace sealwright
