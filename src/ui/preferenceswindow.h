#pragma once

#include "app/keychaintools.h"
#include "ui/icons.h"

#include <QWidget>

#include <optional>

namespace platform {
class Preferences;
}

class QListWidget;
class QStackedWidget;

namespace sealwright {

class SettingsSection;

/// The settings of the whole application, page by page, each explained in a line. Shows and writes the
/// preferences themselves, so it agrees with a script that changes one while it is open. Escape closes it.
/// Main thread.
class PreferencesWindow : public QWidget {
    Q_OBJECT

public:
    /// In the order of the list.
    enum class Page { signing, notarization, log, tools };

    /// Without programs for the keychain there is no choice of the notary service.
    explicit PreferencesWindow(platform::Preferences &preferences,
                               std::optional<KeychainTools> keychain = {});

    /// Brings the one window to the front, made anew if none is open.
    static void present(platform::Preferences &preferences, const KeychainTools &keychain);

    void showPage(Page page);

Q_SIGNALS:
    void closed();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void addPage(const QString &title, icons::Command picture,
                 void (PreferencesWindow::*fill)(SettingsSection &));
    void addSigning(SettingsSection &section);
    void addNotarization(SettingsSection &section);
    void addLog(SettingsSection &section);
    void addTools(SettingsSection &section);
    void arrange();
    static int heightOf(QWidget &page, int width);

    platform::Preferences &m_preferences;
    const std::optional<KeychainTools> m_keychain; ///< where there is a keychain to manage
    QListWidget *const m_list;
    QStackedWidget *const m_pages;
};

} // namespace sealwright
