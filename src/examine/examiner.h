#pragma once

#include "examine/examination.h"
#include "platform/result.h"

namespace sealwright::examine {

/// Looks at an item: finds all code in it, what a run with these choices would do with each, and what would
/// be refused. Changes nothing of the item. The error says why it cannot be looked at. The locale must be a
/// UTF-8 one.
[[nodiscard]] platform::Result<Examination> examineItem(const QString &item, const Choices &choices);

/// The same without what a run would do and what would be refused.
[[nodiscard]] platform::Result<Examination> collectItem(const QString &item);

} // namespace sealwright::examine
