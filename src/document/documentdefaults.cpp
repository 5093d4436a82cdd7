#include "document/documentdefaults.h"

#include "document/entitlementswitches.h"
#include "document/mainwincontroller.h"
#include "platform/applicationhost.h"
#include "platform/preferences.h"
#include "run/preferencekeys.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

using Value = std::function<QVariant(const MainWinController &)>;

/// A text as it is saved: none at all is saved as an empty one.
QVariant stored(const QString &text)
{
    return text.isNull() ? u""_s : text;
}

Value textOf(TextField DocumentControls::*field)
{
    return [field](const MainWinController &document) { return stored((document.*field).stringValue()); };
}

Value titleOf(Popup DocumentControls::*popup)
{
    return [popup](const MainWinController &document) {
        return stored((document.*popup).titleOfSelectedItem());
    };
}

Value flag(ObservableProperty<bool> DocumentFields::*field)
{
    return [field](const MainWinController &document) { return (document.*field)(); };
}

Value stateOf(Checkbox DocumentControls::*checkbox)
{
    return [checkbox](const MainWinController &document) { return (document.*checkbox).isOn(); };
}

QList<DocumentDefault> allDefaults()
{
    QList<DocumentDefault> defaults{
        {key::providerNameValue, textOf(&DocumentControls::providerNameField)},
        {key::appleIDValue, textOf(&DocumentControls::appleIDField)},
        {key::lastUsedIdentity, titleOf(&DocumentControls::identitiesPopup)},
        {key::appPassValue, textOf(&DocumentControls::appPassField)},
        {key::createDiskImage, flag(&DocumentFields::useDiskImage)},
        {key::useDropDMGForImages, flag(&DocumentFields::useDropDMG)},
        {key::dropDMGConfigName, titleOf(&DocumentControls::dropDMGConfigsPopup)},
    };
    for (const auto &[key, checkbox] : checkboxDefaults())
        defaults.append({key, stateOf(checkbox)});
    return defaults;
}

QList<CheckboxDefault> allCheckboxDefaults()
{
    QList<CheckboxDefault> defaults;
    for (const EntitlementSwitch &row : entitlementSwitches())
        defaults.append({row.preference, row.control});
    defaults.append({key::dontClearLogEachTime, &DocumentControls::dontClearCheckbox});
    defaults.append({key::dontSignEnclosures, &DocumentControls::dontSignEnclosuresCheckbox});
    return defaults;
}

} // namespace

const QList<DocumentDefault> &documentDefaults()
{
    static const QList<DocumentDefault> defaults = allDefaults();
    return defaults;
}

const QList<CheckboxDefault> &checkboxDefaults()
{
    static const QList<CheckboxDefault> defaults = allCheckboxDefaults();
    return defaults;
}

void MainWinController::doSetDocumentDefaults()
{
    changeStatus(status::interacting);
    host().application.beep();
    const platform::Alert alert{
        u"Set New Document Defaults"_s,
        u"Click Set if you want the values, settings and entitlements in this document saved and used in newly created documents. This includes any entered Apple ID, app-specific password, and provider short name."_s,
        {u"Set"_s, u"Cancel"_s}};
    beginSheet(alert, [this](int answer) {
        if (answer == platform::alertFirstButton) {
            for (const auto &[key, value] : documentDefaults())
                host().preferences.setValue(key, value(*this));
        }
        changeStatus(status::ready);
    });
}

} // namespace sealwright
