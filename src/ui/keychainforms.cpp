#include "ui/keychainforms.h"

#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

// What the checks before a submission ask for at least.
constexpr qsizetype shortestAppleID = 3;
constexpr qsizetype shortestItem = 2;

QString textOf(const QLineEdit *field)
{
    return field->text().trimmed();
}

QString lacksOfFile(const QLineEdit *field)
{
    const QString path = textOf(field);
    if (path.isEmpty())
        return KeychainForm::tr("Choose the file.");
    return QFileInfo(path).isFile() ? QString() : KeychainForm::tr("There is no such file.");
}

QString lacksOfCredentials(const QString &appleID, const QString &item)
{
    if (appleID.size() < shortestAppleID)
        return KeychainForm::tr("Enter the Apple ID of the account.");
    return item.size() < shortestItem ? KeychainForm::tr("Give it a name of two letters or more.")
                                      : QString();
}

QString firstOf(const QStringList &texts)
{
    for (const QString &text : texts) {
        if (!text.isEmpty())
            return text;
    }
    return {};
}

} // namespace

// Practice

PracticeForm::PracticeForm(KeychainTools keychain, Extent extent, QWidget *parent)
    : KeychainForm(std::move(keychain), parent)
    , m_extent(extent)
    , m_name(addField({u"practiceName"_s, tr("Your &name or company"), tr("Example Corp")}))
{
    m_name->setText(tr("Practice"));
    const QString title = extent == Extent::forAll ? tr("Set Up for &Practice") : tr("Make &Identity");
    addButton(u"practiceButton"_s, title).setDefault(true); // all that there is to do
}

QString PracticeForm::identity() const
{
    return keychain::withTeam(m_name->text());
}

QString PracticeForm::item()
{
    return u"practice"_s;
}

QString PracticeForm::appleID()
{
    return u"practice@localhost"_s;
}

QString PracticeForm::lacks() const
{
    if (textOf(m_name).isEmpty())
        return tr("Enter a name for the identity.");
    return m_name->text().contains(u'"') ? tr("The name cannot have a quotation mark.") : QString();
}

QList<keychain::Command> PracticeForm::commands() const
{
    using keychain::IdentityKind;
    QList<keychain::Command> commands{keychain::makeIdentity(identity(), IdentityKind::application),
                                      keychain::makeIdentity(identity(), IdentityKind::installer)};
    if (m_extent == Extent::forAll)
        commands += {keychain::makeApiKey(item()), keychain::useNotary(u"local"_s)};
    return commands;
}

// A certificate

ImportForm::ImportForm(KeychainTools keychain, QWidget *parent)
    : KeychainForm(std::move(keychain), parent)
    , m_file(addFile({u"importFile"_s, tr("&Certificate with its key"), tr("A .p12, .pem or .cer file")},
                     tr("Certificates and keys (*.p12 *.pfx *.pem *.cer *.crt *.key);;All files (*)")))
    , m_passphrase(addSecret({u"importPassphrase"_s, tr("&Passphrase of the file"), tr("None")}))
{
    addButton(u"importButton"_s, tr("I&mport"));
}

QString ImportForm::lacks() const
{
    return lacksOfFile(m_file);
}

QList<keychain::Command> ImportForm::commands() const
{
    return {keychain::importFile(textOf(m_file), m_passphrase->text())};
}

// What protects them

UnlockForm::UnlockForm(KeychainTools keychain, QWidget *parent)
    : KeychainForm(std::move(keychain), parent)
    , m_passphrase(addSecret({u"unlockPassphrase"_s, tr("&Passphrase"), {}}))
{
    addButton(u"unlockButton"_s, tr("&Unlock")).setDefault(true); // nothing else can be done
}

QString UnlockForm::lacks() const
{
    return m_passphrase->text().isEmpty() ? tr("Enter the passphrase.") : QString();
}

QList<keychain::Command> UnlockForm::commands() const
{
    return {keychain::unlock(m_passphrase->text())};
}

PassphraseForm::PassphraseForm(KeychainTools keychain, QWidget *parent)
    : KeychainForm(std::move(keychain), parent)
    , m_passphrase(addSecret({u"newPassphrase"_s, tr("New &passphrase"), {}}))
    , m_again(addSecret({u"newPassphraseAgain"_s, tr("Once &more"), {}}))
{
    addButton(u"passphraseButton"_s, tr("&Set Passphrase"));
}

QString PassphraseForm::lacks() const
{
    if (m_passphrase->text().isEmpty())
        return tr("Enter a passphrase. Nobody can open the keychain without it.");
    return m_passphrase->text() == m_again->text() ? QString() : tr("The two are not the same yet.");
}

QList<keychain::Command> PassphraseForm::commands() const
{
    return {keychain::setPassphrase(m_passphrase->text())};
}

// A key

ApiKeyForm::ApiKeyForm(KeychainTools keychain, QWidget *parent)
    : CredentialForm(std::move(keychain), parent)
    , m_file(addFile({u"apiKeyFile"_s, tr("&Key from App Store Connect"), tr("AuthKey_….p8")},
                     tr("Keys (*.p8);;All files (*)")))
    , m_keyId(addField({u"apiKeyId"_s, tr("Key I&D"), tr("As the file's name tells")}))
    , m_issuer(addField({u"apiKeyIssuer"_s, tr("&Issuer ID"), tr("None, for an individual key")}))
    , m_appleID(addField({u"apiKeyAppleID"_s, tr("&Apple ID"), u"name@example.com"_s}))
    , m_item(addField({u"apiKeyItem"_s, tr("Keep &under the name"), tr("notary")}))
{
    m_item->setText(tr("notary"));
    addButton(u"apiKeyButton"_s, tr("Add &Key"));
}

QString ApiKeyForm::item() const
{
    return textOf(m_item);
}

QString ApiKeyForm::appleID() const
{
    return textOf(m_appleID);
}

bool ApiKeyForm::isIdInName() const
{
    static const QRegularExpression form(uR"re(^AuthKey_[A-Za-z0-9]+\.p8$)re"_s);
    return QFileInfo(textOf(m_file)).fileName().contains(form);
}

QString ApiKeyForm::lacks() const
{
    const QString lacksId = textOf(m_keyId).isEmpty() && !isIdInName()
        ? tr("Enter the key's ID; the file's name does not tell it.")
        : QString();
    const bool isIssuer = textOf(m_issuer).isEmpty() || !QUuid::fromString(textOf(m_issuer)).isNull();
    const QString lacksIssuer = isIssuer ? QString() : tr("The issuer ID has the form of a UUID.");
    return firstOf({lacksOfFile(m_file), lacksId, lacksIssuer, lacksOfCredentials(appleID(), item())});
}

QList<keychain::Command> ApiKeyForm::commands() const
{
    return {keychain::addApiKey({item(), textOf(m_file), textOf(m_keyId), textOf(m_issuer)})};
}

// A password

PasswordForm::PasswordForm(KeychainTools keychain, QWidget *parent)
    : CredentialForm(std::move(keychain), parent)
    , m_appleID(addField({u"passwordAppleID"_s, tr("&Apple ID"), u"name@example.com"_s}))
    , m_password(addSecret({u"passwordSecret"_s, tr("App-specific pass&word"), u"abcd-efgh-ijkl-mnop"_s}))
    , m_item(addField({u"passwordItem"_s, tr("Keep &under the name"), tr("notary")}))
{
    m_item->setText(tr("notary"));
    addButton(u"passwordButton"_s, tr("Add &Password"));
}

QString PasswordForm::item() const
{
    return textOf(m_item);
}

QString PasswordForm::appleID() const
{
    return textOf(m_appleID);
}

QString PasswordForm::lacks() const
{
    const QString lacksPassword = m_password->text().isEmpty() ? tr("Enter the password.") : QString();
    return firstOf({lacksOfCredentials(appleID(), item()), lacksPassword});
}

QList<keychain::Command> PasswordForm::commands() const
{
    return {keychain::addPassword(item(), appleID(), m_password->text())};
}

} // namespace sealwright
