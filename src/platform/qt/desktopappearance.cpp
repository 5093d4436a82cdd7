#include "platform/qt/desktopappearance.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

const QString service = u"org.freedesktop.portal.Desktop"_s;
const QString objectPath = u"/org/freedesktop/portal/desktop"_s;
const QString interfaceName = u"org.freedesktop.portal.Settings"_s;
const QString appearanceGroup = u"org.freedesktop.appearance"_s;
const QString colorSchemeKey = u"color-scheme"_s;

/// The answer to `Read` is wrapped once more than the document says.
QVariant unwrapped(QVariant value)
{
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

DesktopAppearance::DesktopAppearance(QDBusConnection bus)
{
    bus.connect(service, objectPath, interfaceName, u"SettingChanged"_s, u"ssv"_s, this,
                SLOT(settingChanged(QDBusMessage)));
    ask(bus);
}

void DesktopAppearance::ask(QDBusConnection &bus)
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, objectPath, interfaceName, u"Read"_s);
    call << appearanceGroup << colorSchemeKey;
    auto *const answer = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        if (const QDBusPendingReply<QDBusVariant> reply = *answer; reply.isValid())
            take(unwrapped(reply.value().variant()));
    });
}

void DesktopAppearance::settingChanged(const QDBusMessage &signal)
{
    const QVariantList arguments = signal.arguments(); // group, key, value
    if (arguments.value(0) == appearanceGroup && arguments.value(1) == colorSchemeKey)
        take(unwrapped(arguments.value(2)));
}

void DesktopAppearance::take(const QVariant &value)
{
    Scheme scheme = Scheme::noPreference; // also for a number that nobody knows yet
    if (value.toUInt() == 1)
        scheme = Scheme::dark;
    else if (value.toUInt() == 2)
        scheme = Scheme::light;
    setScheme(scheme);
}

} // namespace platform
