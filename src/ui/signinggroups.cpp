#include "ui/signinggroups.h"

#include "document/mainwincontroller.h"
#include "ui/bindings.h"
#include "ui/settingrows.h"
#include "ui/toplevel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>

using namespace Qt::StringLiterals;

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
    : QGroupBox(u"Credentials"_s, parent)
    , m_document(document)
{
    QFormLayout &form = *makeForm(this);
    const settingrows::TextRow appleID{&DocumentControls::appleIDField, u"appleIDField"_s, u"Apple &ID"_s,
                                       u"name@example.com"_s};
    QLineEdit *const field = settingrows::makeTextField(this, document, appleID);
    form.addRow(settingrows::makeCaption(this, appleID.label, *field), field);
    addPassword(form);
    addProvider(form);
}

void CredentialsGroup::addPassword(QFormLayout &form)
{
    const settingrows::TextRow row{&DocumentControls::appPassField, u"appPassField"_s,
                                   u"App-specific &password"_s, u"Name of its keychain item"_s};
    QLineEdit *const field = settingrows::makeTextField(this, m_document, row);
    form.addRow(settingrows::makeCaption(this, row.label, *field),
                sideBySide(this, Action::doAppPassHelp,
                           {field,
                            settingrows::makeHelpButton(this, m_document, Action::doAppPassHelp,
                                                        u"appPassHelpButton"_s,
                                                        settingrows::plainLabel(row.label))}));
}

void CredentialsGroup::addProvider(QFormLayout &form)
{
    const settingrows::TextRow row{&DocumentControls::providerNameField, u"providerNameField"_s,
                                   u"Provider short &name"_s, u"For members of several teams"_s};
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
    : QGroupBox(u"Signing and Upload"_s, parent)
    , m_document(document)
{
    QFormLayout &form = *makeForm(this);
    addIdentity(form);
    addDiskImage(form);
}

void SigningGroup::addIdentity(QFormLayout &form)
{
    QComboBox *const identities = makePopup(this, m_document.identitiesPopup, u"identitiesPopup"_s);
    form.addRow(settingrows::makeCaption(this, u"Signing iden&tity"_s, *identities), identities);
    form.addRow(settingrows::makeCheckbox(
        this, m_document,
        {&DocumentControls::dontSignEnclosuresCheckbox, u"dontSignEnclosuresCheckbox"_s,
         u"Sign &main item only"_s,
         u"Leaves the code that an app or plug-in contains as it is signed now"_s}));
}

void SigningGroup::addDiskImage(QFormLayout &form)
{
    QCheckBox *const create =
        settingrows::makeCheckbox(this, m_document,
                                  {&DocumentControls::createDiskImageCheckbox, u"createDiskImageCheckbox"_s,
                                   u"&Upload as a disk image"_s,
                                   u"Staples a disk image for distribution, in place of the item itself"_s});
    form.addRow(sideBySide(this, Action::doDropDMGHelp,
                           {create,
                            settingrows::makeHelpButton(this, m_document, Action::doDropDMGHelp,
                                                        u"dropDMGHelpButton"_s, u"Disk image options"_s)}));
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
        {&DocumentControls::useDropDMGCheckbox, u"useDropDMGCheckbox"_s, u"Made by &DropDMG with"_s,
         u"Has DropDMG make the disk image to one of its configurations"_s});
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
