#pragma once

#include "app/keychaintools.h"

#include <QWidget>

class QBoxLayout;
class QLabel;
class QPushButton;

namespace sealwright {

/// Says what protects the keychain, and changes it. Main thread.
class ProtectionPage : public QWidget {
    Q_OBJECT

public:
    explicit ProtectionPage(KeychainTools keychain, QWidget *parent = nullptr);

Q_SIGNALS:
    /// What a change came to.
    void answered(const sealwright::KeychainTools::Answer &answer);
    void changed();

private:
    QPushButton *addButton(QBoxLayout &row, const QString &name, const QString &title,
                           const keychain::Command &command);
    void change(const keychain::Command &command);
    void look();
    void tell(const QString &status);
    void offer(keychain::State state);

    const KeychainTools m_keychain;
    QLabel *const m_status;
    QWidget *m_unlock;
    QWidget *m_passphrase;
    QPushButton *m_lock;
    QPushButton *m_useKeyring;
    QPushButton *m_useFile;
};

} // namespace sealwright
