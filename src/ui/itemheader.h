#pragma once

#include "ui/activewindowtimer.h"
#include "ui/itemsurvey.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace sealwright {

class BusyBar;
class ElidedLabel;
class MainWinController;

/// What a document is about and how far it has come: the item's icon, name and facts, what it is about to
/// become, the status word, and while a workflow runs its progress and the way to cancel it.
class ItemHeader : public QWidget {
    Q_OBJECT

public:
    explicit ItemHeader(MainWinController &document, QWidget *parent = nullptr);

    void setStatusWord(const QString &word);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QWidget *makeItemName();
    QWidget *makeProgress();
    void showProgress();
    QPushButton *makeCancelButton();
    QWidget *makeLines();
    void showItem();
    void showFacts();
    void survey(const QString &path);

    MainWinController &m_document;
    QLabel *m_icon;
    QLabel *m_statusWord;
    ElidedLabel *m_progressText;
    ElidedLabel *m_facts;
    QString m_surveyed; ///< path of the item that the survey is of; empty without one
    ItemSurvey m_survey; ///< as far as it is known
    QWidget *m_progressPlace = nullptr;
    BusyBar *m_progress = nullptr;
    ActiveWindowTimer m_seconds;
};

} // namespace sealwright
