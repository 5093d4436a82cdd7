#pragma once

#include <functional>

class QAction;
class QMenu;

namespace sealwright {

/// Has an item on or off by the condition while its menu shows. At other times it is on: its shortcut does
/// not open the menu first, so what it triggers has to ask by itself.
void offerWhileOpen(QMenu &menu, QAction &item, const std::function<bool()> &isOffered);

} // namespace sealwright
