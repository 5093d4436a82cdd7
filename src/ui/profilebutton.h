#pragma once

#include "document/profiles.h"

#include <QToolButton>

class QMenu;

namespace sealwright {

/// Says which profile a document was set to, and lets a person choose, keep and share others. Main thread.
class ProfileButton : public QToolButton {
    Q_OBJECT

public:
    explicit ProfileButton(MainWinController &document, QWidget *parent = nullptr);

    /// How many letters of a name are shown at most.
    void setRoom(int letters);

private:
    void showName();
    void fill();
    void use(const QString &name);
    void askForName();
    void save(const QString &name);
    void remove();
    void complain(const platform::Outcome &outcome);

    MainWinController &m_document;
    const ProfileStore m_store;
    QMenu *const m_menu;
    int m_letters = 24;
};

} // namespace sealwright
