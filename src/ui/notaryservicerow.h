#pragma once

#include "app/keychaintools.h"

#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;

namespace sealwright {

/// The choice of the notary service: Apple's, that of this machine, or one at an address. The tools keep it,
/// and say here when they cannot. Main thread.
class NotaryServiceRow : public QWidget {
    Q_OBJECT

public:
    explicit NotaryServiceRow(KeychainTools keychain, QWidget *parent = nullptr);

    QComboBox &choice() const { return *m_choice; }

private:
    void ask();
    void showChoice(const QString &service);
    void choose(int index);
    void useAddress();
    void use(const QString &service);
    void tell(const QString &problem);

    const KeychainTools m_keychain;
    QComboBox *const m_choice;
    QLineEdit *const m_address;
    QLabel *const m_problem;
};

} // namespace sealwright
