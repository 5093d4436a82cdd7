#pragma once

#include "ui/activewindowtimer.h"
#include "ui/itemsurvey.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace sealwright {

class BusyBar;
class ElidedLabel;
class HintedLabel;
class ItemLook;
class MainWinController;
class ProfileButton;

/// What a document is about and how far it has come: the item's icon, name and facts, what it is about to
/// become, the status word, and while a workflow runs its progress and the way to cancel it.
class ItemHeader : public QWidget {
    Q_OBJECT

public:
    ItemHeader(MainWinController &document, const ItemLook &look, QWidget *parent = nullptr);

    void setStatusWord(const QString &word);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    QWidget *makeItemName();
    QWidget *makeProgress();
    QWidget *makeFacts();
    void showProgress();
    void shareWidth();
    QPushButton *makeCancelButton();
    QWidget *makeLines();
    QWidget *makeState();
    void showPractice();
    void showItem();
    void followItem();
    bool isWithoutItem() const;
    void offerChoice();
    void showFacts();
    void survey(const QString &path);
    void walk();
    void heedLook(const QJsonObject &examination);
    void take(const ItemSurvey &survey);

    MainWinController &m_document;
    const ItemLook &m_look;
    QLabel *m_icon;
    QLabel *m_statusWord;
    ProfileButton *m_profile;
    QLabel *m_practice;
    ElidedLabel *m_progressText;
    HintedLabel *m_facts;
    QString m_surveyed; ///< path of the item that the survey is of; empty without one
    ItemSurvey m_survey; ///< as far as it is known
    QWidget *m_progressPlace = nullptr;
    BusyBar *m_progress = nullptr;
    ActiveWindowTimer m_seconds;
};

} // namespace sealwright
