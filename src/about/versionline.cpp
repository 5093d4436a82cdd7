#include "about/versionline.h"

#include <QDate>
#include <QLocale>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

/// Qt's long form begins or ends with the weekday, set apart by what a language puts there.
QString withoutWeekday(QString format)
{
    static const QRegularExpression leading(u"^[^dMy]*dddd(?:'[^']*'|[^dMy'])*"_s);
    static const QRegularExpression trailing(u"[\\s,،]*dddd[^dMy]*$"_s);
    return format.remove(leading).remove(trailing);
}

} // namespace

QString versionLine(const VersionDetails &details)
{
    return u"v%1 (%2) %3, %4 (%5)"_s.arg(details.shortVersion, details.bundleVersion, details.buildDate,
                                         details.processor, details.daysToGo);
}

QString localizedBuildDate(const QString &buildDate)
{
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    const QDate date = english.toDate(buildDate.simplified(), u"MMM d yyyy"_s);
    const QLocale users;
    return users.toString(date, withoutWeekday(users.dateFormat(QLocale::LongFormat)));
}

QString processorText()
{
#ifdef Q_PROCESSOR_X86_64
    return u"64-bit Intel"_s;
#else
    return u""_s;
#endif
}

} // namespace sealwright
