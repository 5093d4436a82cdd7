#pragma once

#include "document/controls.h"

namespace sealwright {

/// The controls of a document's window, under the names that widgets, tests and screen readers know them by.
/// Main thread only.
struct DocumentControls {
    LogText statusTextView;

    TextField appletNameField; ///< the item's name on show
    ProgressIndicator progressIndicator;

    // Credentials
    TextField providerNameField;
    TextField appleIDField;
    TextField appPassField; ///< the name of the keychain item that holds the app-specific password
    Button chooseProviderButton;

    Popup identitiesPopup;

    // Entitlements
    Checkbox eventsCheckbox;
    Checkbox calendarsCheckbox;
    Checkbox audioCheckbox;
    Checkbox cameraCheckbox;
    Checkbox locationCheckbox;
    Checkbox photosCheckbox;
    Checkbox addressBookCheckbox;
    Checkbox disableLibCheckbox;
    Checkbox allowJITCheckbox;
    Checkbox allowUnsignedExecMemCheckbox;
    Checkbox allowDYLDEnvCheckbox;
    Checkbox disableMemProtectionCheckbox;
    Checkbox isDebugToolCheckbox;
    Checkbox extraEntitlementsButton; ///< on while an extra entitlements file is chosen

    // Options
    Checkbox dontClearCheckbox;
    Checkbox dontSignEnclosuresCheckbox;
    Checkbox createDiskImageCheckbox;
    Checkbox useDropDMGCheckbox;
    Popup dropDMGConfigsPopup;

    // Commands
    Button submitAppButton;
    Button stapleOnlyButton;
    Button signOnlyButton;
    Button fetchHistoryButton;
    TextField historyMaxPagesField;
    TextField historyMaxPagesLabel;

    // The sheet with the short names of the account's teams
    TabView providerSheetTabView;
    Popup providerSheetPopup;
    TextField providerSheetErrorText; ///< the heading of a message
    TextField providerSheetDetailText;
    ProgressIndicator providerSheetProgress;
};

} // namespace sealwright
