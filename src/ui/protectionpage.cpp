#include "ui/protectionpage.h"

#include "ui/keychainforms.h"
#include "ui/named.h"
#include "ui/settingrows.h"
#include "ui/spacing.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace sealwright {

using keychain::Protection;

namespace {

QString sentenceOn(keychain::State state)
{
    if (state.isLocked)
        return ProtectionPage::tr(
            "The keychain is locked. Nothing can be signed or submitted before it is unlocked.");
    switch (state.protection) {
    case Protection::folderAlone:
        return ProtectionPage::tr(
            "The keys lie unprotected: whoever can read your files can use them. A passphrase or the "
            "desktop's keyring protects them.");
    case Protection::passphrase:
        return ProtectionPage::tr(
            "The keys lie under a passphrase. The keychain is open until you lock it or log out.");
    case Protection::secretService:
        return ProtectionPage::tr("The keys lie under the desktop's keyring, and are open while that is.");
    }
    return {};
}

} // namespace

ProtectionPage::ProtectionPage(KeychainTools keychain, QWidget *parent)
    : QWidget(parent)
    , m_keychain(std::move(keychain))
    , m_status(named(new QLabel(this), u"keychainStatus"_s, tr("State of the keychain")))
    , m_unlock(new UnlockForm(m_keychain, this))
    , m_passphrase(new PassphraseForm(m_keychain, this))
{
    setObjectName(u"keychainProtection"_s);
    setFocusPolicy(Qt::StrongFocus);
    m_unlock->setObjectName(u"keychainUnlock"_s);
    m_passphrase->setObjectName(u"keychainNewPassphrase"_s);
    m_status->setTextFormat(Qt::PlainText);
    m_status->setWordWrap(true);
    auto *const buttons = new QHBoxLayout;
    buttons->setSpacing(spacing::between);
    buttons->addStretch(1);
    m_lock = addButton(*buttons, u"keychainLock"_s, tr("L&ock"), keychain::lock());
    m_useKeyring = addButton(*buttons, u"keychainUseKeyring"_s, tr("Use the Desktop's &Keyring"),
                             keychain::useStore(Protection::secretService));
    m_useFile = addButton(*buttons, u"keychainUseFile"_s, tr("&Do Without the Keyring"),
                          keychain::useStore(Protection::folderAlone));
    auto *const rows = new QVBoxLayout(this);
    rows->addWidget(m_status);
    for (QWidget *const form : {m_unlock, m_passphrase}) {
        rows->addWidget(form);
        connect(static_cast<KeychainForm *>(form), &KeychainForm::added, this, &ProtectionPage::changed);
    }
    rows->addLayout(buttons);
    rows->addStretch(1);
    connect(this, &ProtectionPage::changed, this, &ProtectionPage::look);
    look();
}

QPushButton *ProtectionPage::addButton(QBoxLayout &row, const QString &name, const QString &title,
                                       const keychain::Command &command)
{
    auto *const button = named(new QPushButton(title, this), name, settingrows::plainLabel(title));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, command] { change(command); });
    row.addWidget(button);
    return button;
}

void ProtectionPage::change(const keychain::Command &command)
{
    m_keychain.run(command, *this, [this](const KeychainTools::Answer &answer) {
        Q_EMIT answered(answer);
        Q_EMIT changed();
    });
}

void ProtectionPage::look()
{
    m_keychain.run(keychain::status(), *this, [this](const KeychainTools::Answer &answer) {
        tell(answer ? answer->trimmed() : answer.error());
    });
}

void ProtectionPage::tell(const QString &status)
{
    const auto state = keychain::stateIn(status);
    m_status->setText(state ? sentenceOn(*state) : status);
    m_status->setToolTip(status);
    offer(state.value_or(keychain::State()));
}

void ProtectionPage::offer(keychain::State state)
{
    const bool hadFocus = isAncestorOf(window()->focusWidget());
    setFocusProxy(state.isLocked ? m_unlock : m_passphrase);
    const bool isUnderKeyring = state.protection == Protection::secretService;
    m_unlock->setVisible(state.isLocked);
    m_passphrase->setVisible(!state.isLocked);
    m_lock->setVisible(!state.isLocked && state.protection == Protection::passphrase);
    m_useKeyring->setVisible(!state.isLocked && !isUnderKeyring);
    m_useFile->setVisible(isUnderKeyring);
    if (hadFocus)
        setFocus(); // what had it may be out of sight now
}

} // namespace sealwright
