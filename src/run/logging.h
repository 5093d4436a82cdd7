#pragma once

#include <QLoggingCategory>

/// What runs note for whoever looks for a fault; off unless `QT_LOGGING_RULES` turns `sealwright.run.debug`
/// on. Any thread.
inline const QLoggingCategory &runLogging()
{
    static const QLoggingCategory category("sealwright.run", QtCriticalMsg);
    return category;
}
