#pragma once

#include "platform/qt/folderworkspace.h"

#include <QDBusConnection>

#include <functional>

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

    /// `unshown` is called on the main thread with the path of an item that neither could show.
    void setUnshown(std::function<void(const QString &path)> unshown) { m_unshown = std::move(unshown); }

private:
    using Unshown = std::function<void(const QString &path)>;

    static void openFolderOf(const QString &path, const Unshown &unshown);

    QDBusConnection m_bus;
    Unshown m_unshown;
};

} // namespace platform
