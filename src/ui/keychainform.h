#pragma once

#include "app/keychaintools.h"

#include <QWidget>

class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace sealwright {

/// A few fields and the button that hands them to the keychain. The first field has its focus. What is still
/// lacking stands below the fields while a person types, and the button waits for it. Main thread.
class KeychainForm : public QWidget {
    Q_OBJECT

public:
    explicit KeychainForm(KeychainTools keychain, QWidget *parent = nullptr);

Q_SIGNALS:
    /// The keychain has taken it.
    void added();

protected:
    struct Field {
        QString name; ///< that tests know it by
        QString label;
        QString hint; ///< stands in the field while it is empty
        QString toolTip = {};
    };
    QLineEdit *addField(const Field &field);
    /// A field whose text is not shown, and is forgotten once the keychain has taken it.
    QLineEdit *addSecret(const Field &field);
    /// A field for the path of a file, with a panel to choose it in. `filter` as QFileDialog has it.
    QLineEdit *addFile(const Field &field, const QString &filter);
    /// Ends the form; the button stands beside its last field.
    QPushButton &addButton(const QString &name, const QString &title);
    /// Shows a text where the outcome stands.
    void tellFailure(const QString &text);
    void tellSuccess(const QString &text);

    /// What lacks before the button may be pressed; empty if nothing does.
    virtual QString lacks() const = 0;
    virtual QList<keychain::Command> commands() const = 0;

private:
    void putBeside(QLineEdit &field, QPushButton &button);
    void showState();
    void press();
    void finish(const KeychainTools::Answer &answer);
    void chooseFile(QLineEdit &field, const QString &filter);
    void forgetSecrets();

    const KeychainTools m_keychain;
    QFormLayout *const m_rows;
    QLabel *const m_state;
    QLineEdit *m_lastField = nullptr;
    QPushButton *m_button = nullptr;
    QList<QLineEdit *> m_secrets;
    bool m_isAtWork = false;
};

} // namespace sealwright
