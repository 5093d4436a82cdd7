#include "ui/keychainform.h"

#include "ui/filepanels.h"
#include "ui/named.h"
#include "ui/settingrows.h"
#include "ui/spacing.h"
#include "ui/statetext.h"

#include <QBoxLayout>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace sealwright {

KeychainForm::KeychainForm(KeychainTools keychain, QWidget *parent)
    : QWidget(parent)
    , m_keychain(std::move(keychain))
    , m_rows(new QFormLayout(this))
    , m_state(new QLabel(this))
{
    m_rows->setContentsMargins(0, m_rows->verticalSpacing(), 0, 0); // most stand under the line of a tab
    m_rows->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_state->setTextFormat(Qt::PlainText);
    m_state->setWordWrap(true);
    m_state->setVisible(false);
}

QLineEdit *KeychainForm::addField(const Field &field)
{
    auto *const edit = new QLineEdit(this);
    edit->setObjectName(field.name);
    edit->setPlaceholderText(field.hint);
    edit->setToolTip(field.toolTip);
    m_rows->addRow(settingrows::makeCaption(this, field.label, *edit), edit);
    connect(edit, &QLineEdit::textChanged, this, &KeychainForm::showState);
    connect(edit, &QLineEdit::returnPressed, this, &KeychainForm::press);
    m_lastField = edit;
    if (!focusProxy())
        setFocusProxy(edit);
    return edit;
}

QLineEdit *KeychainForm::addSecret(const Field &field)
{
    QLineEdit *const edit = addField(field);
    edit->setEchoMode(QLineEdit::Password);
    m_secrets.append(edit);
    return edit;
}

QLineEdit *KeychainForm::addFile(const Field &field, const QString &filter)
{
    QLineEdit *const edit = addField(field);
    auto *const choose = named(new QPushButton(tr("Choose…"), this), field.name + u"Button"_s,
                               tr("Choose: %1").arg(settingrows::plainLabel(field.label)));
    choose->setAutoDefault(false);
    connect(choose, &QPushButton::clicked, this, [this, edit, filter] { chooseFile(*edit, filter); });
    putBeside(*edit, *choose);
    return edit;
}

void KeychainForm::putBeside(QLineEdit &field, QPushButton &button)
{
    auto *const row = new QHBoxLayout;
    row->setSpacing(spacing::between);
    const QFormLayout::TakeRowResult taken = m_rows->takeRow(&field);
    row->addWidget(&field, 1);
    row->addWidget(&button);
    m_rows->addRow(taken.labelItem->widget(), row);
    delete taken.labelItem;
    delete taken.fieldItem;
}

void KeychainForm::chooseFile(QLineEdit &field, const QString &filter)
{
    filepanels::choose(*this, {tr("Choose a file"), QDir::homePath(), filter},
                       [edit = QPointer(&field)](const QString &path) {
                           if (edit)
                               edit->setText(path);
                       });
}

QPushButton &KeychainForm::addButton(const QString &name, const QString &title)
{
    m_button = named(new QPushButton(title, this), name, settingrows::plainLabel(title));
    m_button->setAutoDefault(false);
    connect(m_button, &QPushButton::clicked, this, &KeychainForm::press);
    putBeside(*m_lastField, *m_button);
    m_rows->addRow(m_state);
    m_state->setObjectName(name + u"State"_s);
    m_button->setEnabled(lacks().isEmpty());
    m_state->setVisible(false); // nobody has typed anything
    return *m_button;
}

void KeychainForm::showState()
{
    if (m_button)
        m_button->setEnabled(lacks().isEmpty() && !m_isAtWork);
    statetext::put(*m_state, lacks(), theme::Meaning::quiet);
}

void KeychainForm::press()
{
    if (m_isAtWork || !lacks().isEmpty())
        return showState();
    m_isAtWork = true;
    if (window()->focusWidget() == m_button)
        setFocus(); // or it would go to whatever comes next, which another Space would press
    m_button->setEnabled(false);
    statetext::put(*m_state, tr("At work…"), theme::Meaning::underway);
    m_keychain.runAll(commands(), *this, [this](const KeychainTools::Answer &answer) { finish(answer); });
}

void KeychainForm::finish(const KeychainTools::Answer &answer)
{
    m_isAtWork = false;
    if (answer)
        forgetSecrets();
    m_button->setEnabled(lacks().isEmpty());
    if (!answer)
        return tellFailure(answer.error());
    tellSuccess(tr("Done."));
    Q_EMIT added();
}

void KeychainForm::forgetSecrets()
{
    for (QLineEdit *const secret : m_secrets)
        secret->clear();
}

void KeychainForm::tellFailure(const QString &text)
{
    statetext::put(*m_state, text, theme::Meaning::bad);
}

void KeychainForm::tellSuccess(const QString &text)
{
    statetext::put(*m_state, text, theme::Meaning::good);
}

} // namespace sealwright
