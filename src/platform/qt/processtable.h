#pragma once

#include <QStringList>

namespace platform {

/// Where the programs lie that run now, with links resolved: for each process its executable, and its script
/// if the executable is a script's interpreter. Processes that the user may not look into are left out. Empty
/// on a host whose processes cannot be looked at in this way.
QStringList pathsOfRunningPrograms();

} // namespace platform
