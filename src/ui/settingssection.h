#pragma once

#include <QWidget>

namespace platform {
class Preferences;
}

class QDoubleSpinBox;
class QSpinBox;
class QVBoxLayout;

namespace sealwright {

/// One page of settings: what is set, and below each what that means. Main thread.
class SettingsSection : public QWidget {
    Q_OBJECT

public:
    explicit SettingsSection(platform::Preferences &preferences, QWidget *parent = nullptr);

    /// The name of the page, above its settings.
    void addTitle(const QString &title);
    void addCheckbox(const QString &key, const QString &label, const QString &explanation);
    /// `field` is the setting itself or holds it.
    void addField(QWidget *field, QWidget &setting, const QString &label, const QString &explanation);

    struct Range {
        double least;
        double most;
        double step = 1;
        int decimals = 0;
    };
    /// A whole number; `unit` stands behind it.
    void addNumber(const QString &key, const QString &label, const Range &range, const QString &unit,
                   const QString &explanation);
    /// A number of seconds.
    void addSeconds(const QString &key, const QString &label, const Range &range, const QString &explanation);
    /// Ends the page: what is above it stays at the top.
    void fillUp();

private:
    void beginSetting();
    /// Below the setting, so many pixels from its edge.
    void explain(QWidget &setting, const QString &explanation, int indent);

    platform::Preferences &m_preferences;
    QVBoxLayout *const m_rows;
};

} // namespace sealwright
