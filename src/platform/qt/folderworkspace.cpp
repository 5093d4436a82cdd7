#include "platform/qt/folderworkspace.h"

#include "platform/bundle.h"
#include "platform/fileservice.h"
#include "platform/process.h"
#include "platform/qt/processtable.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace platform {

FolderWorkspace::FolderWorkspace(QString applications, FileService &files, ProcessLauncher &launcher)
    : m_applications(std::move(applications))
    , m_files(files)
    , m_launcher(launcher)
{
}

bool FolderWorkspace::isRunning(const QString &bundleIdentifier) const
{
    const QString application = pathForApplication(bundleIdentifier);
    if (application.isNull())
        return false;
    const QString inside = QFileInfo(application).canonicalFilePath() + u'/';
    const QStringList paths = pathsOfRunningPrograms();
    return std::any_of(paths.begin(), paths.end(),
                       [&inside](const QString &path) { return path.startsWith(inside); });
}

Outcome FolderWorkspace::launchInBackground(const QString &bundleIdentifier)
{
    const QString application = pathForApplication(bundleIdentifier);
    if (application.isNull())
        return Outcome::failure(u"Cannot launch '%1': it is not installed"_s.arg(bundleIdentifier));
    const QString executable = informationText(m_files, application, u"CFBundleExecutable"_s);
    if (executable.isEmpty())
        return Outcome::failure(u"Cannot launch '%1': it names no executable"_s.arg(application));
    return m_launcher.launchDetached(application + u"/Contents/MacOS/"_s + executable, {});
}

QString FolderWorkspace::pathForApplication(const QString &bundleIdentifier) const
{
    for (const QString &name : m_files.contentsOfDirectory(m_applications, FolderLink::follow)) {
        const QString path = m_applications + u'/' + name;
        if (name.endsWith(".app"_L1) && platform::bundleIdentifier(m_files, path) == bundleIdentifier)
            return path;
    }
    return {};
}

} // namespace platform
