#include "platform/qt/settingspreferences.h"

#include <QSettings>

using namespace Qt::StringLiterals;

namespace platform {

/// Qt writes changes to disk from the event loop, which may be at it while another thread sets a value.
class SettingsPreferences::File : public QSettings {
public:
    File(const QString &path, std::recursive_mutex &mutex)
        : QSettings(path, QSettings::IniFormat)
        , m_mutex(mutex)
    {
    }

protected:
    bool event(QEvent *event) override
    {
        const std::lock_guard lock(m_mutex);
        return QSettings::event(event);
    }

private:
    std::recursive_mutex &m_mutex;
};

SettingsPreferences::SettingsPreferences(const QString &path)
    : m_file(std::make_unique<File>(path, m_mutex))
{
    for (const QString &key : m_file->childKeys()) {
        const QVariant value = m_file->value(key);
        // The form takes a text with unquoted commas for a list.
        m_values[key] = value.typeId() == QMetaType::QStringList ? value.toStringList().join(", "_L1) : value;
    }
}

SettingsPreferences::~SettingsPreferences() = default;

void SettingsPreferences::save()
{
    const std::lock_guard lock(m_mutex);
    m_file->sync();
}

void SettingsPreferences::store(const QString &key, const QVariant &value)
{
    const std::lock_guard lock(m_mutex);
    m_values[key] = value;
    m_file->setValue(key, value);
}

void SettingsPreferences::discard(const QString &key)
{
    const std::lock_guard lock(m_mutex);
    m_values.remove(key);
    m_file->remove(key);
}

QVariant SettingsPreferences::storedValue(const QString &key) const
{
    const std::lock_guard lock(m_mutex);
    return m_values.value(key);
}

} // namespace platform
