#include "ui/launcherentry.h"

#include "app/appdelegate.h"
#include "document/mainwincontroller.h"

#include <QDBusMessage>
#include <QGuiApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString entryPath = u"/com/canonical/unity/launcherentry/1"_s;
const QString entryInterface = u"com.canonical.Unity.LauncherEntry"_s;

/// No finer than a launcher shows it, so that little is said.
double rounded(double fraction)
{
    return qRound(fraction * 100) / 100.0;
}

} // namespace

double fractionDone(const StepList &steps)
{
    double done = 0;
    qsizetype all = 0;
    for (const StepList::Row &row : steps.rows()) {
        if (row.state == StepState::skipped)
            continue;
        ++all;
        if (row.state == StepState::running && row.parts.all > 0)
            done += double(row.parts.done) / double(row.parts.all);
        else if (row.state != StepState::running && row.state != StepState::waiting)
            done += 1;
    }
    return all > 0 ? std::clamp(done / double(all), 0.0, 1.0) : 0;
}

LauncherEntry::LauncherEntry(AppDelegate &application, QDBusConnection bus)
    : m_application(application)
    , m_bus(std::move(bus))
{
    connect(&application, &AppDelegate::documentAdded, this,
            [this](MainWinController *document) { follow(*document); });
    connect(&application, &AppDelegate::documentRemoved, this, &LauncherEntry::tell);
    for (const DocumentPtr &document : application.allControllers())
        follow(*document);
}

void LauncherEntry::follow(MainWinController &document)
{
    connect(&document.stepList, &Observable::changed, this, &LauncherEntry::tell);
}

QVariantMap LauncherEntry::present() const
{
    double fractions = 0;
    qint64 running = 0;
    for (const DocumentPtr &document : m_application.allControllers()) {
        if (!document->stepList.running())
            continue;
        ++running;
        fractions += fractionDone(document->stepList);
    }
    return {{u"progress"_s, running > 0 ? rounded(fractions / double(running)) : 0.0},
            {u"progress-visible"_s, running > 0},
            {u"count"_s, running},
            {u"count-visible"_s, running > 1}};
}

void LauncherEntry::tell()
{
    const QVariantMap now = present();
    if (now == m_told)
        return;
    m_told = now;
    QDBusMessage update = QDBusMessage::createSignal(entryPath, entryInterface, u"Update"_s);
    update << u"application://%1.desktop"_s.arg(QGuiApplication::desktopFileName()) << m_told;
    m_bus.send(update);
}

} // namespace sealwright
