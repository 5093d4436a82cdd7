#pragma once

#include <QDialog>
#include <QList>

#include <functional>

/// The dialogs attached to one window. One is up at a time; the others wait for their turn. Main thread.
class Sheets : public QObject {
    Q_OBJECT

public:
    /// Attaches the dialog, a child of the window, and returns at once. The completion is called from the
    /// event loop when the dialog has gone; it may end the life of the window.
    void begin(QDialog *dialog, std::function<void()> completion);

    /// Takes all dialogs away. Their completions are not called.
    void drop();

private:
    struct Sheet {
        QDialog *dialog;
        std::function<void()> completion;
    };

    void end(const QDialog *dialog);

    QList<Sheet> m_sheets; // the first one is up
};
