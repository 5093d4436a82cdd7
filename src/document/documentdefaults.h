#pragma once

#include "document/documentcontrols.h"

#include <QVariant>

#include <functional>

namespace sealwright {

class MainWinController;

/// A preference that each new document starts from.
struct DocumentDefault {
    QString key;
    /// What the document shows for it now: a text that is never null, or a boolean. Main thread.
    std::function<QVariant(const MainWinController &)> value;
};

/// All document defaults, in the order in which they are saved and reset.
[[nodiscard]] const QList<DocumentDefault> &documentDefaults();

/// Those of them that have a checkbox.
struct CheckboxDefault {
    QString key;
    Checkbox DocumentControls::*checkbox;
};
[[nodiscard]] const QList<CheckboxDefault> &checkboxDefaults();

} // namespace sealwright
