#include "app/discovery.h"

#include "app/appdelegate.h"
#include "platform/itempath.h"

#include <QCollator>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright::discovery {

namespace {

constexpr qulonglong unknownVersion = 1;

const QString applicationPrefix = u"Developer ID Application: "_s;
const QString installerPrefix = u"Developer ID Installer: "_s;

/// Adds the name behind the prefix, up to the closing quote, if the line has the prefix.
bool takeName(const QString &line, const QString &prefix, QStringList &names)
{
    const qsizetype found = line.indexOf(prefix);
    if (found < 0)
        return false;
    const qsizetype start = found + prefix.size();
    const qsizetype end = line.indexOf(u'"', start);
    const QString name = line.mid(start, end < 0 ? -1 : end - start);
    if (!names.contains(name))
        names.append(name);
    return true;
}

/// The user's, or one like it where none is set: the C locale knows no numbers in names.
QLocale peoplesLocale()
{
    const QLocale own;
    return own.language() == QLocale::C ? QLocale(QLocale::English) : own;
}

} // namespace

quint64 altoolMajorVersion(const QString &help)
{
    static const QRegularExpression banner(u"Copyright .+? Apple .+ Version +(\\d+)\\.(\\d+).(\\d+)"_s);
    const QRegularExpressionMatch match = banner.match(help);
    return std::max(match.captured(1).toULongLong(), unknownVersion); // what is no number reads as 0
}

Identities identitiesInListing(const QString &listing)
{
    Identities identities;
    for (const QString &line : listing.split(u'\n', Qt::SkipEmptyParts)) {
        if (!takeName(line, applicationPrefix, identities.applications))
            takeName(line, installerPrefix, identities.installers);
    }
    if (identities.applications.isEmpty())
        identities.applications.append(noIdentitiesPlaceholder.toString());
    return identities;
}

QStringList configurationNames(const QStringList &fileNames)
{
    QStringList names;
    for (const QString &fileName : fileNames) {
        if (itempath::extension(fileName) == "plist"_L1)
            names.append(itempath::withoutExtension(fileName));
    }
    return names;
}

QStringList sortedLikeFinder(QStringList names)
{
    QCollator collator(peoplesLocale());
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::sort(names.begin(), names.end(), [&collator](const QString &left, const QString &right) {
        const int order = collator.compare(left, right);
        return order != 0 ? order < 0 : left < right; // one order, however the folder lists them
    });
    return names;
}

} // namespace sealwright::discovery
