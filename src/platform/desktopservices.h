#pragma once

#include "platform/notifications.h"
#include "platform/systemappearance.h"
#include "platform/workspace.h"

#include <functional>
#include <memory>

namespace platform {

class FileService;
class MainQueue;
class ProcessLauncher;

/// What the desktop of the host gives. One kind is built: that of macOS in mac/, that of others in qt/.
struct DesktopServices {
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<DistributedNotifications> distributedNotifications;
    std::unique_ptr<UserNotificationCenter> userNotifications;
    std::unique_ptr<SystemAppearance> appearance;
};

/// `applications` is the folder of the applications on a host whose desktop knows none by their identifiers.
/// `unshown` is told the path of an item that nothing on this desktop could show to the person; the desktop
/// of macOS always can. Main thread, once there is an application object.
DesktopServices makeDesktopServices(const QString &applications, FileService &files,
                                    ProcessLauncher &launcher, MainQueue &mainQueue,
                                    std::function<void(const QString &path)> unshown);

} // namespace platform
