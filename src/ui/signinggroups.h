#pragma once

#include <QGroupBox>

class QFormLayout;

namespace sealwright {

class FieldHint;
class MainWinController;

/// Who submits: the account at the notary service.
class CredentialsGroup : public QGroupBox {
    Q_OBJECT

public:
    explicit CredentialsGroup(MainWinController &document, QWidget *parent = nullptr);

private:
    void addPassword(QFormLayout &form);
    void addProvider(QFormLayout &form);
    void lookUp(const QString &item);

    MainWinController &m_document;
    FieldHint *m_appleIDHint = nullptr;
    FieldHint *m_passwordHint = nullptr;
};

/// With what an item is signed, and in what it is uploaded.
class SigningGroup : public QGroupBox {
    Q_OBJECT

public:
    explicit SigningGroup(MainWinController &document, QWidget *parent = nullptr);

private:
    void addIdentity(QFormLayout &form);
    QWidget *makeIdentityHint();
    void addDiskImage(QFormLayout &form);
    QWidget *makeDropDMG();

    MainWinController &m_document;
};

} // namespace sealwright
