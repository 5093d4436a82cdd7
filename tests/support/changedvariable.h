#pragma once

#include <QFile>

/// An environment variable that has another value for a while.
class ChangedVariable {
public:
    ChangedVariable(const char *name, const QString &value)
        : m_name(name)
        , m_before(qgetenv(name))
    {
        qputenv(name, QFile::encodeName(value));
    }
    ~ChangedVariable() { m_before.isNull() ? qunsetenv(m_name) : qputenv(m_name, m_before); }

private:
    const char *const m_name;
    const QByteArray m_before;
};
