#pragma once

#include "platform/window.h"

#include <QMessageBox>

namespace sealwright {

class LetterButton;

/// An alert as a message box. All of its text is shown letter for letter. The first button is the default
/// one; Escape presses the one that cancels, else an OK, else the last; each has a letter.
class AlertBox : public QMessageBox {
    Q_OBJECT

public:
    explicit AlertBox(const platform::Alert &alert, QWidget *parent = nullptr);

    /// The number of the button that was pressed, counted from `platform::alertFirstButton`.
    int answer() const;

private:
    int widthOfText() const;
    void addButtons(const QStringList &titles);
    void styleText();

    QList<LetterButton *> m_buttons;
};

} // namespace sealwright
