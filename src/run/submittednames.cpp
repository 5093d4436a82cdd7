#include "run/submittednames.h"

#include "platform/host.h"
#include "platform/itempath.h"
#include "run/privatefile.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qsizetype mostKept = 1000;

QString pathIn(const QString &stateFolder)
{
    return itempath::appending(stateFolder, u"submitted names"_s);
}

/// Each of an identifier, a blank and a name; the latest last.
QStringList linesKeptBy(const platform::Host &host)
{
    if (host.stateFolder.isEmpty())
        return {};
    const auto bytes = host.files.readFile(pathIn(host.stateFolder));
    return bytes ? QString::fromUtf8(*bytes).split(u'\n', Qt::SkipEmptyParts) : QStringList();
}

} // namespace

void submittednames::remember(const platform::Host &host, const QString &identifier, const QString &name)
{
    if (host.stateFolder.isEmpty() || identifier.isEmpty() || name.isEmpty())
        return;
    QStringList lines = linesKeptBy(host);
    lines.removeIf([&](const QString &line) { return line.section(u' ', 0, 0) == identifier; });
    lines.append(identifier + u' ' + QString(name).replace(u'\n', u' '));
    if (lines.size() > mostKept)
        lines.remove(0, lines.size() - mostKept);
    host.files.createDirectory(host.stateFolder).ignore();
    writePrivately(host.files, pathIn(host.stateFolder), lines.join(u'\n').toUtf8()).ignore();
}

QHash<QString, QString> submittednames::known(const platform::Host &host)
{
    QHash<QString, QString> names;
    for (const QString &line : linesKeptBy(host))
        names.insert(line.section(u' ', 0, 0), line.section(u' ', 1));
    return names;
}

} // namespace sealwright
