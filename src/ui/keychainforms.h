#pragma once

#include "ui/keychainform.h"

namespace sealwright {

/// Makes an identity by the authority of this machine, and whatever else a rehearsal takes.
class PracticeForm : public KeychainForm {
    Q_OBJECT

public:
    /// With `ForAll` it also makes a key of the local service, and has the tools ask that service.
    enum class Extent { forAll, identityAlone };
    PracticeForm(KeychainTools keychain, Extent extent, QWidget *parent = nullptr);

    /// The name of the identity, as the application lists it.
    QString identity() const;
    /// Name of the password item that holds the key.
    static QString item();
    /// What stands where the account's address does: the local service knows no accounts.
    static QString appleID();

protected:
    QString lacks() const override;
    QList<keychain::Command> commands() const override;

private:
    const Extent m_extent;
    QLineEdit *const m_name;
};

/// Imports certificates and keys from a file.
class ImportForm : public KeychainForm {
    Q_OBJECT

public:
    explicit ImportForm(KeychainTools keychain, QWidget *parent = nullptr);

protected:
    QString lacks() const override;
    QList<keychain::Command> commands() const override;

private:
    QLineEdit *const m_file;
    QLineEdit *const m_passphrase;
};

/// Opens a keychain that a passphrase protects.
class UnlockForm : public KeychainForm {
    Q_OBJECT

public:
    explicit UnlockForm(KeychainTools keychain, QWidget *parent = nullptr);

protected:
    QString lacks() const override;
    QList<keychain::Command> commands() const override;

private:
    QLineEdit *const m_passphrase;
};

/// Protects the keychain by a passphrase, which has to be typed twice: nobody opens it without.
class PassphraseForm : public KeychainForm {
    Q_OBJECT

public:
    explicit PassphraseForm(KeychainTools keychain, QWidget *parent = nullptr);

protected:
    QString lacks() const override;
    QList<keychain::Command> commands() const override;

private:
    QLineEdit *const m_passphrase;
    QLineEdit *const m_again;
};

/// What a document is told of credentials: who, and which item of the keychain.
class CredentialForm : public KeychainForm {
    Q_OBJECT

public:
    using KeychainForm::KeychainForm;

    virtual QString item() const = 0;
    virtual QString appleID() const = 0;
};

/// Keeps a key from App Store Connect.
class ApiKeyForm : public CredentialForm {
    Q_OBJECT

public:
    explicit ApiKeyForm(KeychainTools keychain, QWidget *parent = nullptr);

    QString item() const override;
    QString appleID() const override;

protected:
    QString lacks() const override;
    QList<keychain::Command> commands() const override;

private:
    bool isIdInName() const;

    QLineEdit *const m_file;
    QLineEdit *const m_keyId;
    QLineEdit *const m_issuer;
    QLineEdit *const m_appleID;
    QLineEdit *const m_item;
};

/// Keeps an app-specific password.
class PasswordForm : public CredentialForm {
    Q_OBJECT

public:
    explicit PasswordForm(KeychainTools keychain, QWidget *parent = nullptr);

    QString item() const override;
    QString appleID() const override;

protected:
    QString lacks() const override;
    QList<keychain::Command> commands() const override;

private:
    QLineEdit *const m_appleID;
    QLineEdit *const m_password;
    QLineEdit *const m_item;
};

} // namespace sealwright
