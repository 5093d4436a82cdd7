#pragma once

#include "document/controls.h"
#include "ui/activewindowtimer.h"
#include "ui/bannerframe.h"
#include "ui/outcome.h"

class QLabel;
class QLayout;
class QPushButton;

namespace sealwright {

class BannerRow;
class MainWinController;
class RunSign;

/// Says how the latest run has ended, or that it waits, in the colour of that, with what one may want to do
/// next. It stays until the next run begins. Main thread.
class OutcomeBanner : public BannerFrame {
    Q_OBJECT

public:
    explicit OutcomeBanner(MainWinController &document, QWidget *parent = nullptr);

    const RunOutcome &outcome() const { return m_outcome; }
    /// What the sheet says that comes up now is the reason of whatever ends now.
    void heedSheet(const platform::Alert &alert);

protected:
    void changeEvent(QEvent *event) override;

private:
    QPushButton *addButton(const QString &name, const QString &title, void (OutcomeBanner::*press)());
    void heedLog(const LogText::Run &run);
    void follow();
    void show(const RunOutcome &outcome);
    void colour();
    QString withWhereabouts(const QString &sentence) const;
    bool hasOriginal() const;
    QString nameOfResult() const;
    bool isPastUpload() const;
    void showButtons();
    QLayout *makeWords();
    RunOutcome withAdvice(RunOutcome outcome) const;
    void newDocument();
    void showInFolder();
    void copyIdentifier();
    void goOnWaiting();
    void tryAgain();
    QString folder() const;
    QString identifier() const;

    MainWinController &m_document;
    RunOutcome m_outcome;
    LastWords m_words;
    BannerRow *m_row = nullptr;
    RunSign *m_sign;
    QLabel *m_title;
    QLabel *m_sentence;
    QLabel *m_recentWaits;
    ActiveWindowTimer m_seconds; ///< for a cancel that is taken back a moment later, which nobody tells
    QPushButton *m_showInFolder = nullptr;
    QPushButton *m_copyIdentifier = nullptr;
    QPushButton *m_goOnWaiting = nullptr;
    QPushButton *m_tryAgain = nullptr;
    QPushButton *m_newDocument = nullptr;
};

} // namespace sealwright
