#pragma once

#include <QWidget>

namespace platform {
class Preferences;
}

class QBoxLayout;
class QLabel;
class QLineEdit;

/// The settings of the whole application, each explained in a line. Shows and writes the preferences
/// themselves, so it agrees with a script that changes one while it is open. Escape closes it. Main thread.
class PreferencesWindow : public QWidget {
    Q_OBJECT

public:
    explicit PreferencesWindow(platform::Preferences &preferences);

    /// Brings the one window to the front, made anew if none is open.
    static void present(platform::Preferences &preferences);

private:
    void addSigning(QBoxLayout &sections);
    void addNotarization(QBoxLayout &sections);
    void addLog(QBoxLayout &sections);
    void addTools(QBoxLayout &sections);
    QWidget *makeToolRoot(QWidget *parent);
    QLabel *makeToolRootProblem(QWidget *parent, QLineEdit &path);
    void chooseToolRoot();

    platform::Preferences &m_preferences;
};
