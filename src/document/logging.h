#pragma once

#include <QLoggingCategory>

namespace sealwright {

/// The words that documents go through.
/// Off unless `QT_LOGGING_RULES` turns `sealwright.document.debug` on. Any thread.
inline const QLoggingCategory &documentLogging()
{
    static const QLoggingCategory category("sealwright.document", QtCriticalMsg);
    return category;
}

} // namespace sealwright
