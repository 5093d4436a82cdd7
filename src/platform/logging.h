#pragma once

#include <QLoggingCategory>

namespace platform {

/// What the host's services note for whoever looks for a fault; off unless `QT_LOGGING_RULES` turns
/// `sealwright.platform.debug` on. Any thread.
inline const QLoggingCategory &platformLog()
{
    static const QLoggingCategory category("sealwright.platform", QtCriticalMsg);
    return category;
}

} // namespace platform
