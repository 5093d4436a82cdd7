#pragma once

#include <QGroupBox>

class MainWinController;
class QFormLayout;

/// Who submits: the account at the notary service.
class CredentialsGroup : public QGroupBox {
    Q_OBJECT

public:
    explicit CredentialsGroup(MainWinController &document, QWidget *parent = nullptr);

private:
    void addPassword(QFormLayout &form);
    void addProvider(QFormLayout &form);

    MainWinController &m_document;
};

/// With what an item is signed, and in what it is uploaded.
class SigningGroup : public QGroupBox {
    Q_OBJECT

public:
    explicit SigningGroup(MainWinController &document, QWidget *parent = nullptr);

private:
    void addIdentity(QFormLayout &form);
    void addDiskImage(QFormLayout &form);
    QWidget *makeDropDMG();

    MainWinController &m_document;
};
