#pragma once

#include "examine/itemmaker.h"

#include <QStringList>

#include <functional>
#include <ostream>
#include <string>

/// One item of which it is known what becomes of it.
struct CorpusItem {
    std::string name; ///< letters and digits
    QString architecture; ///< of the app's main executable
    std::function<void(ItemMaker &)> make; ///< beside the app that is there
    QStringList errors; ///< "RULE PATH", sorted, each once; none: nothing is refused
    QStringList warnings = {};
};

/// Lets a failed test name its item.
inline void PrintTo(const CorpusItem &item, std::ostream *out)
{
    *out << item.name;
}

/// Known causes of refusal, and things that look like them and are harmless.
[[nodiscard]] const QList<CorpusItem> &corpus();
