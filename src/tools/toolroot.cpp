#include "tools/toolroot.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace sealwright {

ToolRoot::ToolRoot(QString root)
    : m_root(std::move(root))
{
}

QString ToolRoot::locate(const QString &path) const
{
    if (m_root.isEmpty())
        return path;
    const QString underRoot = m_root + path;
    return QFileInfo::exists(underRoot) ? underRoot : path;
}

QStringList ToolRoot::searchFolders() const
{
    if (m_root.isEmpty())
        return {};
    return {m_root + u"/usr/bin"_s, m_root + u"/usr/sbin"_s};
}

QString ToolRoot::applicationsFolder() const
{
    return m_root + u"/Applications"_s;
}

ToolRoot ToolRoot::chosen(const QString &preference, const QStringList &bundled)
{
#ifdef Q_OS_MACOS
    return ToolRoot(); // the tools themselves are there
#endif
    if (!preference.isEmpty())
        return ToolRoot(QDir::cleanPath(preference));
    for (const QString &folder : bundled) {
        if (QFileInfo::exists(folder))
            return ToolRoot(QDir::cleanPath(folder));
    }
    return ToolRoot();
}

} // namespace sealwright
