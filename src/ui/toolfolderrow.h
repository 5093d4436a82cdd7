#pragma once

#include <QWidget>

namespace platform {
class Preferences;
}

class QLabel;
class QLineEdit;

namespace sealwright {

/// The folder of tools as a setting: its path, a panel to choose it in, and, while the application would not
/// start with it, what is wrong. Main thread.
class ToolFolderRow : public QWidget {
    Q_OBJECT

public:
    explicit ToolFolderRow(platform::Preferences &preferences, QWidget *parent = nullptr);

    QLineEdit &field() const { return *m_path; }

private:
    void makeProblem();
    void showProblem();
    void choose();

    platform::Preferences &m_preferences;
    QLineEdit *const m_path;
    QLabel *const m_problem;
};

} // namespace sealwright
