#pragma once

#include "platform/property.h"

#include <QString>
#include <QVariant>

namespace platform {

/// The user's settings: one flat table of keys that lasts from one launch to the next. Any thread.
///
/// A value may have been typed by a person into the file, so each reader takes what it can from a text: a
/// number that is none reads as 0, and "YES", "true" and "1" read as on.
class Preferences {
public:
    virtual ~Preferences() = default;

    /// Values for keys that nobody has set. They are not stored. Replaces those of an earlier call.
    void registerDefaults(const QVariantMap &defaults);

    /// The stored value, else the registered one, else invalid.
    QVariant value(const QString &key) const;

    bool boolean(const QString &key) const;
    qint64 integer(const QString &key) const;
    double number(const QString &key) const;
    /// Null when the key has no value.
    QString string(const QString &key) const;

    void setValue(const QString &key, const QVariant &value);
    void remove(const QString &key);

    /// Returns once what has been set is stored for whoever looks from outside. It is stored soon without
    /// this too.
    virtual void save() = 0;

    /// Tells of each write of any key, on the thread that wrote.
    Observable changes;

protected:
    virtual QVariant storedValue(const QString &key) const = 0;
    virtual void store(const QString &key, const QVariant &value) = 0;
    virtual void discard(const QString &key) = 0;

private:
    QVariantMap m_defaults; // written once at launch, before any other thread reads
};

} // namespace platform
