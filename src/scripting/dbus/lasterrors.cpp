#include "scripting/dbus/lasterrors.h"

namespace sealwright {

bool LastErrors::attend(const QString &connection)
{
    return m_offendingObjects.update([&connection](auto &objects) {
        if (objects.contains(connection))
            return false;
        objects.insert(connection, {});
        return true;
    });
}

void LastErrors::forget(const QString &connection)
{
    m_offendingObjects.update([&connection](auto &objects) { objects.remove(connection); });
}

void LastErrors::record(const QString &connection, const QVariant &offendingObject)
{
    m_offendingObjects.update([&](auto &objects) {
        if (const auto found = objects.find(connection); found != objects.end())
            *found = offendingObject;
    });
}

QVariant LastErrors::of(const QString &connection) const
{
    return m_offendingObjects().value(connection);
}

} // namespace sealwright
