#pragma once

#include "platform/property.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

namespace sealwright {

class AppDelegate;
class MainWinController;
class StepList;

/// How far a run has come, from 0 to 1: its steps, and of the one that runs what is known of its parts. Pure.
[[nodiscard]] double fractionDone(const StepList &steps);

/// Shows on the application's entry in the desktop's launcher how many documents are at work and how far they
/// have come, by the protocol of Unity that most desktops have:
/// https://wiki.ubuntu.com/Unity/LauncherAPI#Low_level_DBus_API:_com.canonical.Unity.LauncherEntry
/// A desktop without it takes no notice. Main thread.
class LauncherEntry : public QObject {
    Q_OBJECT

public:
    LauncherEntry(AppDelegate &application, QDBusConnection bus);

    /// What was told last, by the names of the protocol.
    const QVariantMap &told() const { return m_told; }

private:
    void follow(MainWinController &document);
    QVariantMap present() const;
    void tell();

    AppDelegate &m_application;
    QDBusConnection m_bus;
    QVariantMap m_told;
};

} // namespace sealwright
