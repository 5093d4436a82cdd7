#include "run/submittednames.h"

#include "platform/preferences.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString submittedNames =
    u"submittedNames"_s; // lines of an identifier, a blank and a name; the latest last
constexpr qsizetype mostKept = 1000;

} // namespace

void submittednames::remember(platform::Preferences &preferences, const QString &identifier,
                              const QString &name)
{
    if (identifier.isEmpty() || name.isEmpty())
        return;
    QStringList lines = preferences.string(submittedNames).split(u'\n', Qt::SkipEmptyParts);
    lines.removeIf([&](const QString &line) { return line.section(u' ', 0, 0) == identifier; });
    lines.append(identifier + u' ' + QString(name).replace(u'\n', u' '));
    if (lines.size() > mostKept)
        lines.remove(0, lines.size() - mostKept);
    preferences.setValue(submittedNames, lines.join(u'\n'));
}

QHash<QString, QString> submittednames::known(const platform::Preferences &preferences)
{
    QHash<QString, QString> names;
    for (const QString &line : preferences.string(submittedNames).split(u'\n', Qt::SkipEmptyParts))
        names.insert(line.section(u' ', 0, 0), line.section(u' ', 1));
    return names;
}

} // namespace sealwright
