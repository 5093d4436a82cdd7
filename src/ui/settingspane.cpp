#include "ui/settingspane.h"

#include "document/mainwincontroller.h"
#include "signing/entitlements.h"
#include "ui/bindings.h"
#include "ui/named.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace {

constexpr int entitlementRows = 7;
constexpr int leastVisibleRows = 4;

struct CheckboxRow {
    Checkbox DocumentControls::*control;
    QString name;
    QString label;
};

const QList<CheckboxRow> &entitlementRowsList()
{
    using Controls = DocumentControls;
    static const QList<CheckboxRow> rows{
        {&Controls::eventsCheckbox, u"eventsCheckbox"_s, u"Apple events"_s},
        {&Controls::calendarsCheckbox, u"calendarsCheckbox"_s, u"Calendars"_s},
        {&Controls::audioCheckbox, u"audioCheckbox"_s, u"Audio input"_s},
        {&Controls::cameraCheckbox, u"cameraCheckbox"_s, u"Camera"_s},
        {&Controls::locationCheckbox, u"locationCheckbox"_s, u"Location"_s},
        {&Controls::photosCheckbox, u"photosCheckbox"_s, u"Photos library"_s},
        {&Controls::addressBookCheckbox, u"addressBookCheckbox"_s, u"Address book"_s},
        {&Controls::disableLibCheckbox, u"disableLibCheckbox"_s, u"Disable library validation"_s},
        {&Controls::allowJITCheckbox, u"allowJITCheckbox"_s, u"Allow JIT"_s},
        {&Controls::allowUnsignedExecMemCheckbox, u"allowUnsignedExecMemCheckbox"_s,
         u"Allow unsigned executable memory"_s},
        {&Controls::allowDYLDEnvCheckbox, u"allowDYLDEnvCheckbox"_s, u"Allow DYLD environment variables"_s},
        {&Controls::disableMemProtectionCheckbox, u"disableMemProtectionCheckbox"_s,
         u"Disable executable page protection"_s},
        {&Controls::isDebugToolCheckbox, u"isDebugToolCheckbox"_s, u"Debugging tool"_s},
    };
    return rows;
}

/// The key that the checkbox puts into the entitlements.
QString entitlementKey(Checkbox DocumentControls::*control)
{
    DocumentControls settings;
    (settings.*control).setState(1);
    return entitlementsFromSettings(settings).firstKey();
}

QCheckBox *makeCheckbox(QWidget *parent, MainWinController &document, const CheckboxRow &row)
{
    auto *const box = named(new QCheckBox(row.label, parent), row.name, row.label);
    bindings::bind(*box, document.*row.control);
    return box;
}

void addTextRow(QFormLayout &form, TextField &field, const QString &name, const QString &label,
                const QString &hint)
{
    auto *const edit = named(new QLineEdit(form.parentWidget()), name, label);
    edit->setPlaceholderText(hint);
    edit->setAcceptDrops(false); // files that are dropped here are for the window
    bindings::bind(*edit, field);
    form.addRow(label, edit);
}

} // namespace

SettingsPane::SettingsPane(MainWinController &document, QWidget *parent)
    : QScrollArea(parent)
{
    auto *const contents = new QWidget(this);
    m_columns = new QBoxLayout(QBoxLayout::LeftToRight, contents);
    m_columns->setContentsMargins(0, 0, 0, 0);
    m_columns->addWidget(makeCredentials(document), 1);
    m_columns->addWidget(makeEntitlements(document), 1);
    setWidget(contents);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) {
        if (now && isAncestorOf(now))
            ensureWidgetVisible(now);
    });
}

QWidget *SettingsPane::makeCredentials(MainWinController &document)
{
    auto *const group = new QGroupBox(u"Credentials and Signing"_s, this);
    auto *const form = new QFormLayout(group);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    addTextRow(*form, document.appleIDField, u"appleIDField"_s, u"Apple ID"_s, {});
    addTextRow(*form, document.appPassField, u"appPassField"_s, u"App-specific password"_s,
               u"Name of its keychain item"_s);
    addTextRow(*form, document.providerNameField, u"providerNameField"_s, u"Provider short name"_s,
               u"For members of several teams"_s);
    const QString identityLabel = u"Signing identity"_s;
    auto *const identities = named(new QComboBox(group), u"identitiesPopup"_s, identityLabel);
    identities->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    bindings::bind(*identities, document.identitiesPopup);
    form->addRow(identityLabel, identities);
    for (const CheckboxRow &row : {CheckboxRow{&DocumentControls::dontClearCheckbox, u"dontClearCheckbox"_s,
                                               u"Keep log between runs"_s},
                                   CheckboxRow{&DocumentControls::dontSignEnclosuresCheckbox,
                                               u"dontSignEnclosuresCheckbox"_s, u"Sign main item only"_s}})
        form->addRow({}, makeCheckbox(group, document, row));
    return group;
}

QWidget *SettingsPane::makeEntitlements(MainWinController &document)
{
    auto *const group = new QGroupBox(u"Entitlements"_s, this);
    auto *const grid = new QGridLayout(group);
    int index = 0;
    for (const CheckboxRow &row : entitlementRowsList()) {
        auto *const box = makeCheckbox(group, document, row);
        box->setToolTip(entitlementKey(row.control));
        grid->addWidget(box, index % entitlementRows, index / entitlementRows);
        ++index;
    }
    auto *const extra = makeCheckbox(
        group, document,
        {&DocumentControls::extraEntitlementsButton, u"extraEntitlementsButton"_s, u"Extra entitlements"_s});
    connect(extra, &QCheckBox::clicked, &document,
            [&document] { document.perform(Action::doExtraEntitlements); });
    grid->addWidget(extra, index % entitlementRows, index / entitlementRows);
    grid->setRowStretch(entitlementRows, 1);
    return group;
}

QSize SettingsPane::sizeHint() const
{
    return widget()->sizeHint();
}

QSize SettingsPane::minimumSizeHint() const
{
    return {0, leastVisibleRows * fontMetrics().lineSpacing()};
}

void SettingsPane::resizeEvent(QResizeEvent *event)
{
    int widthOfBoth = m_columns->spacing();
    for (int index = 0; index < m_columns->count(); ++index)
        widthOfBoth += m_columns->itemAt(index)->minimumSize().width();
    m_columns->setDirection(widthOfBoth <= viewport()->width() ? QBoxLayout::LeftToRight
                                                               : QBoxLayout::TopToBottom);
    updateGeometry();
    QScrollArea::resizeEvent(event);
}
