#pragma once

#include "ui/twopartrow.h"

class QBoxLayout;
class QLineEdit;
class QPushButton;

namespace sealwright {

class Button;
class MainWinController;

/// What a document can be told to do: on the left the history of the account, on the right what begins with
/// an item. The places stay as they are when a dropped item waits to be confirmed and some of them go.
class CommandBar : public TwoPartRow {
    Q_OBJECT

public:
    explicit CommandBar(MainWinController &document, QWidget *parent = nullptr);

    /// Presses the button that Return stands for, if it is on.
    void pressPrimaryButton();
    /// Presses the one that Return stands for in this field of the page, if it is on.
    void pressButtonOf(const QLineEdit &field);

private:
    void addHistory(QBoxLayout &row);
    QLineEdit *makePages();
    QPushButton *makeButton(Button &button, const QString &name);

    MainWinController &m_document;
    QPushButton *m_fetchHistory = nullptr;
    QLineEdit *m_pages = nullptr; ///< how many of the history
    QPushButton *m_submit = nullptr;
};

} // namespace sealwright
