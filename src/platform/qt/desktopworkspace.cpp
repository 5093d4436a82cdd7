#include "platform/qt/desktopworkspace.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace platform {

DesktopWorkspace::DesktopWorkspace(QString applications, FileService &files, ProcessLauncher &launcher,
                                   QDBusConnection bus)
    : FolderWorkspace(std::move(applications), files, launcher)
    , m_bus(std::move(bus))
{
}

void DesktopWorkspace::openFolderOf(const QString &path, const Unshown &unshown)
{
    const bool isOpened = QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).path()));
    if (!isOpened && unshown)
        unshown(path);
}

void DesktopWorkspace::revealItem(const QString &path)
{
    if (!m_bus.isConnected()) {
        openFolderOf(path, m_unshown); // a call that is never sent is never answered
        return;
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
                                       u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    const QString startupId;
    call << QStringList{QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)} << startupId;
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [watcher, path, unshown = m_unshown] {
                         watcher->deleteLater();
                         if (watcher->isError())
                             openFolderOf(path, unshown);
                     });
}

void DesktopWorkspace::openUrl(const QUrl &url)
{
    QDesktopServices::openUrl(url);
}

} // namespace platform
