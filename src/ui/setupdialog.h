#pragma once

#include "app/keychaintools.h"
#include "ui/setupbanner.h"

#include <QDialog>

class QLabel;
class QTabWidget;

namespace sealwright {

class CredentialForm;

/// Leads from a first start to all that a submission needs: an identity, and a key or a password. Each step
/// is looked at in the keychain as soon as it is done; with the last one the credentials become those of new
/// documents, and the application starts anew. Main thread.
class SetupDialog : public QDialog {
    Q_OBJECT

public:
    SetupDialog(MainWinController &document, SetupRoad road, QWidget *parent = nullptr);

private:
    struct Credentials {
        QString item; ///< empty: none yet
        QString appleID;
    };

    QWidget *makePractice();
    void askOften();
    QWidget *makeDeveloperID();
    QWidget *makeCredentialForms(QWidget *parent);
    QLabel *makeState(QWidget *parent, const QString &name);
    void follow(CredentialForm &form);
    void checkIdentity(const QString &wanted = {});
    void heedIdentities(const QStringList &names, const QString &wanted);
    void checkCredentials(const Credentials &credentials, const QList<keychain::Command> &more);
    void finishIfComplete();
    bool isAnyBusy() const;
    void tell(const QString &text);

    MainWinController &m_document;
    const KeychainTools m_keychain;
    QString m_identity; ///< empty: none yet
    Credentials m_credentials;
    QTabWidget *const m_roads;
    QLabel *m_identityState = nullptr;
    QLabel *m_credentialState = nullptr;
    QLabel *m_end;
};

} // namespace sealwright
