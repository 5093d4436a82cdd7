#pragma once

#include "document/documentcontrols.h"

#include <QList>
#include <QVariantMap>

namespace sealwright {

/// One entitlement that a document can switch on, under each of its names.
struct EntitlementSwitch {
    /// What it is about; the window has a column part for each.
    enum class Kind { resourceAccess, runtimeException, debugging };

    Kind kind;
    Checkbox DocumentControls::*control;
    QString controlName;
    QString label; ///< what people read
    QString preference; ///< the document default
    QString scriptKey;
    QString entitlement; ///< Apple's key, as in the Hardened Runtime documentation
};

/// All of them, in the order of the window. To add one: a checkbox in `DocumentControls`, a row here, its
/// preference among the keys in run/, an entry for the document and one for the application in
/// Sealwright.sdef, and its label in ui/coretexts.cpp. Tests that list them all then ask for the new one.
[[nodiscard]] const QList<EntitlementSwitch> &entitlementSwitches();

/// The keys whose switches are on, each with the value true. Main thread.
[[nodiscard]] QVariantMap entitlementsFromSettings(const DocumentControls &settings);

} // namespace sealwright
