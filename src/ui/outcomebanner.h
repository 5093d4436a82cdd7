#pragma once

#include "document/controls.h"
#include "ui/outcome.h"

#include <QFrame>

class ElidedLabel;
class MainWinController;
class QBoxLayout;
class QLabel;
class QPushButton;

/// Says how the latest run has ended, or that it waits, in the colour of that, with what one may want to do
/// next. It stays until the next run begins. Main thread.
class OutcomeBanner : public QFrame {
    Q_OBJECT

public:
    explicit OutcomeBanner(MainWinController &document, QWidget *parent = nullptr);

    /// What the sheet says that comes up now is the reason of whatever ends now.
    void heedSheet(const platform::Alert &alert);

protected:
    void changeEvent(QEvent *event) override;

private:
    QPushButton *addButton(QBoxLayout &row, const QString &name, const QString &title,
                           void (OutcomeBanner::*press)());
    void heedLog(const LogText::Run &run);
    void follow();
    void show(const RunOutcome &outcome);
    void colour();
    void showButtons();
    void showInFolder();
    void copyIdentifier();
    void goOnWaiting();
    void tryAgain();
    QString folder() const;
    QString identifier() const;

    MainWinController &m_document;
    RunOutcome m_outcome;
    LastWords m_words;
    QLabel *m_title;
    QLabel *m_sentence;
    QPushButton *m_showInFolder = nullptr;
    QPushButton *m_copyIdentifier = nullptr;
    QPushButton *m_goOnWaiting = nullptr;
    QPushButton *m_tryAgain = nullptr;
};
