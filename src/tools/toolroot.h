#pragma once

#include <QString>
#include <QStringList>

namespace sealwright {

/// Where a host without Apple's tools keeps what stands in their places: under one folder, at the same paths.
class ToolRoot {
public:
    /// With an empty root every path is itself.
    explicit ToolRoot(QString root = {});

    /// Where the tool that a workflow names lies on this machine: under the root if it is there, else at the
    /// path itself. Any thread.
    QString locate(const QString &path) const;

    /// Folders that a tool's environment gets in front of PATH.
    QStringList searchFolders() const;

    /// The folder of the installed applications.
    QString applicationsFolder() const;

    /// The root to use: what the user has set, else the first of the folders that is there, in which a
    /// toolchain may come with the application. On macOS every path is itself.
    static ToolRoot chosen(const QString &preference, const QStringList &bundled);

private:
    QString m_root;
};

} // namespace sealwright
