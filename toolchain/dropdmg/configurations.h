#pragma once

#include <QStringList>

namespace toolchain {

/// Where DropDMG's configurations lie, one property list each: DropDMG/Configurations in the user's data
/// folder
/// ($XDG_DATA_HOME, ~/.local/share). The folder need not exist.
[[nodiscard]] QString configurationsFolder();

/// The names of the configurations, in the order of their files' names.
[[nodiscard]] QStringList configurationNames();

} // namespace toolchain
