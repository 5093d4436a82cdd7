#include "dropdmg/configurations.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace toolchain {

QString configurationsFolder()
{
    const QString data = qEnvironmentVariable("XDG_DATA_HOME");
    return (data.startsWith(u'/') ? data : QDir::homePath() + u"/.local/share"_s)
        + u"/DropDMG/Configurations"_s;
}

QStringList configurationNames()
{
    QStringList names;
    for (const QString &file :
         QDir(configurationsFolder()).entryList({u"*.plist"_s}, QDir::Files, QDir::Name))
        names.append(file.chopped(qsizetype(std::size(".plist")) - 1));
    return names;
}

} // namespace toolchain
