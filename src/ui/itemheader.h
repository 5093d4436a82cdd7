#pragma once

#include "ui/activewindowtimer.h"

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

private:
    QWidget *makeItemName();
    QWidget *makeProgress();
    void showProgress();
    QPushButton *makeCancelButton();
    QWidget *makeLines();
    void showItem();

    MainWinController &m_document;
    QLabel *m_icon;
    QLabel *m_statusWord;
    ElidedLabel *m_progressText;
    ElidedLabel *m_facts;
    BusyBar *m_progress = nullptr;
    ActiveWindowTimer m_seconds;
};

} // namespace sealwright
