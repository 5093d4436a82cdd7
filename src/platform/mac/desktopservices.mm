#include "platform/desktopservices.h"

#include "platform/mac/macappearance.h"
#include "platform/mac/macdistributednotifications.h"
#include "platform/mac/macnotificationcenter.h"
#include "platform/mac/macworkspace.h"

namespace platform {

DesktopServices makeDesktopServices(const QString &, FileService &, ProcessLauncher &, MainQueue &mainQueue,
                                    std::function<void(const QString &path)>)
{
    return {std::make_unique<MacWorkspace>(), std::make_unique<MacDistributedNotifications>(),
            std::make_unique<MacNotificationCenter>(mainQueue), std::make_unique<MacAppearance>()};
}

} // namespace platform
