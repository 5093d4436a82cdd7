#pragma once

#include "platform/preferences.h"

#include <QMap>

#include <memory>
#include <mutex>

namespace platform {

/// Preferences in an INI file, all in its one group [General]. A text with commas in it is one text, whoever
/// typed it: no value is a list.
class SettingsPreferences : public Preferences {
public:
    /// Reads the file at `path`, which need not be there. What another program writes to it later is seen at
    /// the next launch. What is set here is on disk once it is saved or the event loop has been entered.
    explicit SettingsPreferences(const QString &path);
    ~SettingsPreferences() override;

    void save() override;

protected:
    QVariant storedValue(const QString &key) const override;
    void store(const QString &key, const QVariant &value) override;
    void discard(const QString &key) override;

private:
    class File;

    mutable std::recursive_mutex m_mutex;
    QMap<QString, QVariant> m_values;
    std::unique_ptr<File> m_file;
};

} // namespace platform
