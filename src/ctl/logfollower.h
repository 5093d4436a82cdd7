#pragma once

#include "ctl/client.h"

#include <QObject>

#include <functional>

/// Hands on the log of the document that this connection's command works on, as it comes. Made before the
/// command is sent, so that nothing is missed.
class LogFollower : public QObject {
    Q_OBJECT

public:
    using Entry = std::function<void(const QString &text)>;

    /// Without a path it follows the document that the command makes.
    LogFollower(const Client &client, const QString &documentPath, Entry entry);

    /// Empty until the document is known.
    QString documentPath() const { return m_documentPath; }
    /// Hands on what the document has logged up to now; after the command's answer.
    void finish();

Q_SIGNALS:
    void documentFound();

private:
    Q_SLOT void objectAdded(const QDBusMessage &signal);
    Q_SLOT void entryAppended(const QDBusMessage &signal);

    const Client &m_client;
    const Entry m_entry;
    QString m_documentPath;
};
