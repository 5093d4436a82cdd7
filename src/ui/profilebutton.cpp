#include "ui/profilebutton.h"

#include "document/applicationinterface.h"
#include "document/mainwincontroller.h"
#include "platform/host.h"
#include "platform/workspace.h"
#include "ui/icons.h"
#include "ui/mnemonic.h"
#include "ui/named.h"
#include "ui/settingrows.h"
#include "ui/widgetwindow.h"

#include <QInputDialog>
#include <QMenu>

#include <utility>

using namespace Qt::StringLiterals;

namespace sealwright {

ProfileButton::ProfileButton(MainWinController &document, QWidget *parent)
    : QToolButton(parent)
    , m_document(document)
    , m_store(document.host().files, document.appDelegate().profilesFolder())
    , m_menu(new QMenu(this))
{
    named(this, u"profileButton"_s, tr("Profile"));
    setMenu(m_menu);
    setPopupMode(QToolButton::InstantPopup);
    setIcon(icons::of(icons::Command::profile));
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setFocusPolicy(Qt::TabFocus);
    setToolTip(tr("Credentials, identity, entitlements and options under one name"));
    connect(m_menu, &QMenu::aboutToShow, this, &ProfileButton::fill);
    connect(&document.profile, &Observable::changed, this, &ProfileButton::showName);
    settingrows::offerWhenIdle(*this, document);
    showName();
}

void ProfileButton::setRoom(int letters)
{
    if (std::exchange(m_letters, letters) != letters)
        showName();
}

void ProfileButton::showName()
{
    const QString name = m_document.profile();
    const int room = fontMetrics().averageCharWidth() * m_letters;
    const QString shown = fontMetrics().elidedText(name, Qt::ElideRight, room);
    setText(name.isEmpty() ? tr("Profile") : withoutMnemonic(shown));
    setAccessibleDescription(name);
}

void ProfileButton::fill()
{
    m_menu->clear();
    for (const QString &name : m_store.names()) {
        QAction *const item = m_menu->addAction(withoutMnemonic(name), this, [this, name] { use(name); });
        item->setCheckable(true);
        item->setChecked(name == m_document.profile());
    }
    m_menu->addSeparator();
    m_menu->addAction(tr("&Save as Profile…"), this, &ProfileButton::askForName);
    const QString present = m_document.profile();
    if (!m_store.names().contains(present))
        return;
    m_menu->addAction(tr("Show “%1” in &Folder").arg(withoutMnemonic(present)), this,
                      [this, present] { m_document.host().workspace.revealItem(m_store.path(present)); });
    m_menu->addAction(tr("&Remove “%1”").arg(withoutMnemonic(present)), this, &ProfileButton::remove);
}

void ProfileButton::use(const QString &name)
{
    complain(profiles::use(m_document, name));
}

void ProfileButton::askForName()
{
    auto *const dialog = new QInputDialog(window());
    dialog->setObjectName(u"profileName"_s);
    dialog->setWindowTitle(tr("Save as Profile"));
    dialog->setLabelText(tr("Keeps what this document is set to, without any secret. Name of the profile:"));
    dialog->setTextValue(m_document.profile());
    auto &window = static_cast<WidgetWindow &>(m_document.window());
    window.beginDialog(*dialog, [this, dialog] {
        if (dialog->result() == QDialog::Accepted)
            save(dialog->textValue().trimmed());
    });
}

void ProfileButton::save(const QString &name)
{
    const auto saved = m_store.save(name, profiles::profileOf(m_document));
    if (saved)
        m_document.profile.set(name);
    complain(saved);
}

void ProfileButton::remove()
{
    const auto removed = m_store.remove(m_document.profile());
    if (removed)
        m_document.profile.set({});
    complain(removed);
}

void ProfileButton::complain(const platform::Outcome &outcome)
{
    if (!outcome)
        m_document.window().beginSheet({tr("Profile"), outcome.error(), {}}, [](int) {});
}

} // namespace sealwright
