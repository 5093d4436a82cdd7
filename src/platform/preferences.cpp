#include "platform/preferences.h"

using namespace Qt::StringLiterals;

namespace platform {

void Preferences::registerDefaults(const QVariantMap &defaults)
{
    m_defaults = defaults;
}

QVariant Preferences::value(const QString &key) const
{
    const QVariant stored = storedValue(key);
    return stored.isValid() ? stored : m_defaults.value(key);
}

bool Preferences::boolean(const QString &key) const
{
    const QVariant found = value(key);
    if (found.typeId() != QMetaType::QString)
        return found.toBool();
    const QString text = found.toString().trimmed();
    return text.compare("yes"_L1, Qt::CaseInsensitive) == 0
        || text.compare("true"_L1, Qt::CaseInsensitive) == 0 || text.toDouble() != 0;
}

qint64 Preferences::integer(const QString &key) const
{
    const QVariant found = value(key);
    bool isWhole = false;
    const qint64 whole = found.toString().trimmed().toLongLong(&isWhole);
    return isWhole ? whole : static_cast<qint64>(number(key));
}

double Preferences::number(const QString &key) const
{
    const QVariant found = value(key);
    return found.typeId() == QMetaType::QString ? found.toString().trimmed().toDouble() : found.toDouble();
}

void Preferences::setValue(const QString &key, const QVariant &value)
{
    store(key, value);
    Q_EMIT changes.changed();
}

void Preferences::remove(const QString &key)
{
    discard(key);
    Q_EMIT changes.changed();
}

QString Preferences::string(const QString &key) const
{
    return value(key).toString();
}

} // namespace platform
