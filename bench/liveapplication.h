#pragma once

#include "support/faketools.h"

#include <QProcess>
#include <QTemporaryDir>

#include <functional>

/// The real application, with fake tools and settings of its own, and items to submit.
class LiveApplication {
public:
    /// Comes back when it is ready. It ends with this object.
    explicit LiveApplication(int items);
    ~LiveApplication();

    FakeTools &tools() { return m_tools; }
    /// Path of an item, counted from 0.
    QString item(int number) const { return m_place.filePath(QStringLiteral("%1/Foo.app").arg(number)); }

    double processorSeconds() const;
    double residentMebibytes() const;
    /// The most that was in memory at a time.
    double peakMebibytes() const;

    /// What the client prints.
    static QByteArray outputOf(const QStringList &arguments);
    static void until(const std::function<bool()> &condition);

private:
    QList<QByteArray> account() const;

    const QTemporaryDir m_place;
    FakeTools m_tools;
    QProcess m_process;
};
