#pragma once

#include "platform/qt/folderworkspace.h"

#include <QDBusConnection>

namespace platform {

/// Adds the desktop's file viewer, browser and mail program.
class DesktopWorkspace : public FolderWorkspace {
public:
    DesktopWorkspace(QString applications, FileService &files, ProcessLauncher &launcher,
                     QDBusConnection bus = QDBusConnection::sessionBus());

    /// By the file manager's interface on the bus (freedesktop.org, "File Manager D-Bus Interface"); where
    /// nobody answers there, the folder that the item lies in is opened. Does not wait for either.
    void revealItem(const QString &path) override;
    void openUrl(const QUrl &url) override;

private:
    QDBusConnection m_bus;
};

} // namespace platform
