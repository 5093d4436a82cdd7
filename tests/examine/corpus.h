#pragma once

#include "examine/itemmaker.h"

#include <QStringList>

#include <functional>
#include <string>

/// One item of which it is known what becomes of it.
struct CorpusItem {
    std::string name; ///< letters and digits
    QString architecture; ///< of the app's main executable
    std::function<void(ItemMaker &)> make; ///< beside the app that is there
    QStringList errors; ///< "RULE PATH", sorted, each once; none: nothing is refused
    QStringList warnings = {};
};

/// Known causes of refusal, and things that look like them and are harmless.
[[nodiscard]] const QList<CorpusItem> &corpus();
