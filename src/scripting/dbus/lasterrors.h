#pragma once

#include "platform/property.h"

#include <QHash>
#include <QString>
#include <QVariant>

namespace sealwright {

/// The offending object of the latest error of each connection. A connection that has gone is forgotten, and
/// what comes for it later is not kept. Any thread.
class LastErrors {
public:
    /// Keeps what comes for the connection from now on. False if it did so already.
    bool attend(const QString &connection);
    void forget(const QString &connection);

    /// `offendingObject` is invalid for an error without one.
    void record(const QString &connection, const QVariant &offendingObject);
    /// Invalid if there is none.
    [[nodiscard]] QVariant of(const QString &connection) const;

private:
    Property<QHash<QString, QVariant>> m_offendingObjects;
};

} // namespace sealwright
