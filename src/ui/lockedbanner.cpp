#include "ui/lockedbanner.h"

#include "document/applicationinterface.h"
#include "document/mainwincontroller.h"
#include "ui/icons.h"
#include "ui/keychainwindow.h"
#include "ui/named.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace sealwright {

LockedBanner::LockedBanner(MainWinController &document, QWidget *parent)
    : BannerFrame(theme::Meaning::caution, parent)
    , m_document(document)
{
    named(this, u"lockedBanner"_s, tr("Keychain"));
    auto *const text = new QLabel(tr("The keychain is locked: nothing can be signed or submitted."), this);
    text->setWordWrap(true);
    setAccessibleDescription(text->text());
    auto *const unlock = named(new QPushButton(tr("Unlock…"), this), u"lockedUnlock"_s, tr("Unlock…"));
    unlock->setIcon(icons::of(icons::Command::keychain));
    unlock->setAutoDefault(false);
    connect(unlock, &QPushButton::clicked, this,
            [this] { KeychainWindow::present(m_document.appDelegate(), KeychainWindow::Page::protection); });
    auto *const row = new QHBoxLayout(this);
    spaceOut();
    row->addWidget(text, 1);
    row->addWidget(unlock);
    connect(&document.appDelegate().isKeychainLocked, &Observable::changed, this, &LockedBanner::follow);
    connect(&document.stepList, &Observable::changed, this, &LockedBanner::lookAgain);
    follow();
}

void LockedBanner::follow()
{
    setVisible(m_document.appDelegate().isKeychainLocked());
}

/// A run that has ended may have failed because somebody had locked the keychain.
void LockedBanner::lookAgain()
{
    if (!m_document.isBusy())
        m_document.appDelegate().lookAtKeychain();
}

} // namespace sealwright
