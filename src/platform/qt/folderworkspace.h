#pragma once

#include "platform/workspace.h"

namespace platform {

class FileService;
class ProcessLauncher;

/// The applications that lie as bundles in one folder. One runs while a process runs whose executable, or
/// whose interpreter's script, lies inside the bundle.
class FolderWorkspace : public Workspace {
public:
    /// `applications` is the path of the folder.
    FolderWorkspace(QString applications, FileService &files, ProcessLauncher &launcher);

    bool isRunning(const QString &bundleIdentifier) const override;
    Outcome launchInBackground(const QString &bundleIdentifier) override;
    QString pathForApplication(const QString &bundleIdentifier) const override;

private:
    const QString m_applications;
    FileService &m_files;
    ProcessLauncher &m_launcher;
};

} // namespace platform
