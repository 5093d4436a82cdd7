#pragma once

#include "app/keychaintools.h"

#include <QWidget>

#include <functional>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTabWidget;

namespace sealwright {

class ApplicationInterface;

/// Manages what the tools sign and upload with: identities, keys and passwords, and what protects them. What
/// is told here comes from the programs of the keychain. Escape closes it. Main thread.
class KeychainWindow : public QWidget {
    Q_OBJECT

public:
    KeychainWindow(const platform::Host &host, const QString &program);

    enum class Page { identities, passwords, protection };
    /// Brings the one window to the front with that page, made anew if none is open.
    static void present(ApplicationInterface &application, Page page = Page::identities);

Q_SIGNALS:
    /// Something else protects the keychain now, or it has been locked or unlocked.
    void protectionChanged();

private:
    void rememberPlace();
    QWidget *makeIdentities();
    QWidget *makePasswords();
    QWidget *makeLookup(QWidget *parent);
    QPushButton *makeButton(QWidget *parent, const QString &name, const QString &title,
                            std::function<void()> press);
    void listIdentities();
    void deleteIdentity();
    void change(const keychain::Command &command, std::function<void()> then);
    void tell(const KeychainTools::Answer &answer);

    const platform::Host m_host;
    const KeychainTools m_keychain;
    QTabWidget *const m_pages;
    QListWidget *m_identities = nullptr;
    QPushButton *m_delete = nullptr;
    QLineEdit *m_item = nullptr;
    QLabel *const m_answer;
};

} // namespace sealwright
