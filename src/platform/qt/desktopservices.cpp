#include "platform/desktopservices.h"

#include "platform/qt/busdistributednotifications.h"
#include "platform/qt/desktopappearance.h"
#include "platform/qt/desktopnotificationcenter.h"
#include "platform/qt/desktopworkspace.h"

namespace platform {

DesktopServices makeDesktopServices(const QString &applications, FileService &files,
                                    ProcessLauncher &launcher, MainQueue &mainQueue,
                                    std::function<void(const QString &path)> unshown)
{
    auto workspace = std::make_unique<DesktopWorkspace>(applications, files, launcher);
    workspace->setUnshown(std::move(unshown));
    return {std::move(workspace), std::make_unique<BusDistributedNotifications>(),
            std::make_unique<DesktopNotificationCenter>(mainQueue), std::make_unique<DesktopAppearance>()};
}

} // namespace platform
