#include "ui/signinggroups.h"

#include "app/keychaintools.h"
#include "document/applicationinterface.h"
#include "document/credentialfields.h"
#include "document/mainwincontroller.h"
#include "ui/bindings.h"
#include "ui/fieldhint.h"
#include "ui/settingrows.h"
#include "ui/spacing.h"
#include "ui/toplevel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

/// Widgets side by side, the first of which takes what room there is, and which the help sheet is about.
QWidget *sideBySide(QWidget *parent, Action help, const QList<QWidget *> &widgets)
{
    auto *const line = new QWidget(parent);
    settingrows::setHelp(*line, help);
    auto *const row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    for (QWidget *const widget : widgets)
        row->addWidget(widget, widget == widgets.first() ? 1 : 0);
    return line;
}

/// The line with the hint below it.
QWidget *withHint(QWidget *parent, QWidget *line, QWidget &hint)
{
    auto *const both = new QWidget(parent);
    auto *const rows = new QVBoxLayout(both);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(spacing::near);
    rows->addWidget(line);
    rows->addWidget(&hint);
    return both;
}

QFormLayout *makeForm(QWidget *group)
{
    auto *const form = new QFormLayout(group);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    return form;
}

QComboBox *makePopup(QWidget *parent, Popup &popup, const QString &name)
{
    auto *const box = new QComboBox(parent);
    box->setObjectName(name);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    toplevel::leaveTheWheelToScrolling(*box);
    bindings::bind(*box, popup);
    return box;
}

} // namespace

// Credentials

CredentialsGroup::CredentialsGroup(MainWinController &document, QWidget *parent)
    : QGroupBox(tr("Credentials"), parent)
    , m_document(document)
{
    QFormLayout &form = *makeForm(this);
    const settingrows::TextRow appleID{&DocumentControls::appleIDField, u"appleIDField"_s, tr("Apple &ID"),
                                       u"name@example.com"_s};
    QLineEdit *const field = settingrows::makeTextField(this, document, appleID);
    m_appleIDHint = new FieldHint(
        *field,
        [](const QString &text) {
            return isMissingAppleID(text) ? tr("Needed for a submission.") : QString();
        },
        this);
    form.addRow(settingrows::makeCaption(this, appleID.label, *field), withHint(this, field, *m_appleIDHint));
    addPassword(form);
    addProvider(form);
    connect(&document.submitAppButton, &Control::changed, this, [this] {
        if (m_document.submitAppButton.action() != Action::doDirectSubmit)
            return;
        m_appleIDHint->insist(); // an item waits for them
        m_passwordHint->insist();
    });
}

void CredentialsGroup::addPassword(QFormLayout &form)
{
    const settingrows::TextRow row{&DocumentControls::appPassField, u"appPassField"_s,
                                   tr("App-specific &password"), tr("Name of its keychain item")};
    QLineEdit *const field = settingrows::makeTextField(this, m_document, row);
    QWidget *const line =
        sideBySide(this, Action::doAppPassHelp,
                   {field,
                    settingrows::makeHelpButton(this, m_document, Action::doAppPassHelp,
                                                u"appPassHelpButton"_s, settingrows::plainLabel(row.label))});
    m_passwordHint = new FieldHint(
        *field,
        [](const QString &text) {
            return isMissingPasswordKey(text) ? tr("Needed for a submission: the name of a keychain item.")
                                              : QString();
        },
        this);
    connect(m_passwordHint, &FieldHint::settled, this, &CredentialsGroup::lookUp);
    form.addRow(settingrows::makeCaption(this, row.label, *field), withHint(this, line, *m_passwordHint));
}

/// Says whether the keychain has such an item, where that is the tool root's.
void CredentialsGroup::lookUp(const QString &item)
{
    const KeychainTools keychain(m_document.host(), m_document.appDelegate().keychainProgram());
    if (!keychain.isThere())
        return;
    const auto tell = [this, item](const KeychainTools::Answer &answer) {
        if (m_document.appPassField.stringValue() != item)
            return; // something else has been typed meanwhile
        if (answer)
            m_passwordHint->tell(u"✓ "_s + tr("In the keychain."), theme::Meaning::good);
        else
            m_passwordHint->tell(tr("Not found in the keychain. Account > Keychain… can add it."),
                                 theme::Meaning::caution);
    };
    keychain.run(keychain::findPassword(item.trimmed()), *this, tell);
}

void CredentialsGroup::addProvider(QFormLayout &form)
{
    const settingrows::TextRow row{&DocumentControls::providerNameField, u"providerNameField"_s,
                                   tr("Provider short &name"), tr("Only with several teams")};
    QLineEdit *const field = settingrows::makeTextField(this, m_document, row);
    auto *const choose = new QPushButton(this);
    choose->setObjectName(u"chooseProviderButton"_s);
    choose->setAutoDefault(false);
    bindings::bind(*choose, m_document.chooseProviderButton,
                   [this](Action action) { m_document.perform(action); });
    settingrows::offerWhenIdle(*choose, m_document.chooseProviderButton, m_document);
    form.addRow(settingrows::makeCaption(this, row.label, *field),
                sideBySide(this, Action::doTeamProviderHelp,
                           {field, choose,
                            settingrows::makeHelpButton(this, m_document, Action::doTeamProviderHelp,
                                                        u"teamProviderHelpButton"_s,
                                                        settingrows::plainLabel(row.label))}));
}

// Signing

SigningGroup::SigningGroup(MainWinController &document, QWidget *parent)
    : QGroupBox(tr("Signing and Upload"), parent)
    , m_document(document)
{
    QFormLayout &form = *makeForm(this);
    addIdentity(form);
    addDiskImage(form);
}

void SigningGroup::addIdentity(QFormLayout &form)
{
    QComboBox *const identities = makePopup(this, m_document.identitiesPopup, u"identitiesPopup"_s);
    form.addRow(settingrows::makeCaption(this, tr("Signing iden&tity"), *identities),
                withHint(this, identities, *makeIdentityHint()));
    form.addRow(settingrows::makeCheckbox(
        this, m_document,
        {&DocumentControls::dontSignEnclosuresCheckbox, u"dontSignEnclosuresCheckbox"_s,
         tr("Sign &main item only"),
         tr("Leaves the code that an app or plug-in contains as it is signed now")}));
}

/// Speaks while no identity can be chosen.
QWidget *SigningGroup::makeIdentityHint()
{
    auto *const hint = new QLabel(tr("Account > Set Up… adds one."), this);
    hint->setObjectName(u"identitiesPopupHint"_s);
    hint->setWordWrap(true);
    QPalette palette;
    palette.setColor(QPalette::WindowText, theme::colourOf(theme::Meaning::caution, this->palette()));
    hint->setPalette(palette);
    const auto show = [this, hint] {
        hint->setVisible(m_document.identitiesPopup.titleOfSelectedItem() == noIdentitiesPlaceholder);
    };
    connect(&m_document.identitiesPopup, &Control::changed, hint, show);
    show();
    return hint;
}

void SigningGroup::addDiskImage(QFormLayout &form)
{
    QCheckBox *const create =
        settingrows::makeCheckbox(this, m_document,
                                  {&DocumentControls::createDiskImageCheckbox, u"createDiskImageCheckbox"_s,
                                   tr("&Upload as a disk image"),
                                   tr("Staples a disk image for distribution, in place of the item itself")});
    form.addRow(sideBySide(this, Action::doDropDMGHelp,
                           {create,
                            settingrows::makeHelpButton(this, m_document, Action::doDropDMGHelp,
                                                        u"dropDMGHelpButton"_s, tr("Disk image options"))}));
    QWidget *const dropDMG = makeDropDMG();
    settingrows::setHelp(*dropDMG, Action::doDropDMGHelp);
    form.addRow(dropDMG);
    bindings::enableWhile(*dropDMG, m_document.createDiskImageCheckbox,
                          [this] { return m_document.createDiskImageCheckbox.isOn(); });
}

QWidget *SigningGroup::makeDropDMG()
{
    QCheckBox *const use = settingrows::makeCheckbox(
        this, m_document,
        {&DocumentControls::useDropDMGCheckbox, u"useDropDMGCheckbox"_s, tr("Made by &DropDMG with"),
         tr("Has DropDMG make the disk image to one of its configurations")});
    QComboBox *const configurations =
        makePopup(this, m_document.dropDMGConfigsPopup, u"dropDMGConfigsPopup"_s);
    configurations->setAccessibleName(use->accessibleName()); // whose words lead to it
    auto *const line = new QWidget(this);
    auto *const row = new QHBoxLayout(line);
    row->setContentsMargins(fontMetrics().averageCharWidth() * 3, 0, 0, 0); // it depends on the one above
    row->addWidget(use);
    row->addWidget(configurations, 1);
    bindings::enableWhile(*configurations, m_document.dropDMGConfigsPopup, m_document.useDropDMGCheckbox,
                          [this] { return m_document.useDropDMGCheckbox.isOn(); });
    return line;
}

} // namespace sealwright
