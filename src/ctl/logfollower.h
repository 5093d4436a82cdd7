#pragma once

#include "ctl/client.h"
#include "ctl/interrupt.h"

#include <QObject>

/// Prints the log of the document that this connection's command works on, as it comes, and turns the first
/// interrupt into a cancel of that document. Made before the command is sent, so that nothing is missed.
class LogFollower : public QObject {
    Q_OBJECT

public:
    /// Without a path it follows the document that the command makes.
    LogFollower(const Client &client, const QString &documentPath);

    /// Prints what the document has logged up to now; after the command's answer.
    void finish();

private:
    Q_SLOT void objectAdded(const QDBusMessage &signal);
    Q_SLOT void entryAppended(const QDBusMessage &signal);
    void cancelOnce();

    const Client &m_client;
    QString m_documentPath;
    Interrupt m_interrupt;
    enum class Cancel { notAsked, asked, sent } m_cancel = Cancel::notAsked;
};
