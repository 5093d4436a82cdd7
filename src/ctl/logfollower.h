#pragma once

#include "ctl/client.h"

#include <QObject>

#include <functional>

namespace sealwright {

/// Hands on the log of the document that this connection's command works on, as it comes. Made before the
/// command is sent, so that nothing is missed.
class LogFollower : public QObject {
    Q_OBJECT

public:
    using Entry = std::function<void(const QString &text)>;

    /// Which of the documents that this connection's commands make are followed.
    enum class Documents { first, all };

    /// Without a path it follows what the command makes.
    LogFollower(const Client &client, const QString &documentPath, Entry entry,
                Documents documents = Documents::first);

    /// Empty until the document is known.
    QString documentPath() const { return m_documentPaths.value(0); }
    const QStringList &documentPaths() const { return m_documentPaths; }
    /// Hands on what the document has logged up to now; after the command's answer.
    void finish();

Q_SIGNALS:
    void documentFound();

private:
    Q_SLOT void objectAdded(const QDBusMessage &signal);
    Q_SLOT void entryAppended(const QDBusMessage &signal);

    const Client &m_client;
    const Entry m_entry;
    const Documents m_documents;
    QStringList m_documentPaths;
};

} // namespace sealwright
