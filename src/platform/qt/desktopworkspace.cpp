#include "platform/qt/desktopworkspace.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

void openFolderOf(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).path()));
}

} // namespace

DesktopWorkspace::DesktopWorkspace(QString applications, FileService &files, ProcessLauncher &launcher,
                                   QDBusConnection bus)
    : FolderWorkspace(std::move(applications), files, launcher)
    , m_bus(std::move(bus))
{
}

void DesktopWorkspace::revealItem(const QString &path)
{
    if (!m_bus.isConnected()) {
        openFolderOf(path); // a call that is never sent is never answered
        return;
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
                                       u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    const QString startupId;
    call << QStringList{QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)} << startupId;
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, path] {
        watcher->deleteLater();
        if (watcher->isError())
            openFolderOf(path);
    });
}

void DesktopWorkspace::openUrl(const QUrl &url)
{
    QDesktopServices::openUrl(url);
}

} // namespace platform
