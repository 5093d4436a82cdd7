#pragma once

#include <QString>

namespace platform {
class ProcessLauncher;
}

namespace sealwright {

/// Runs a shell command line and answers with its standard output; null if that is no UTF-8 or the shell
/// cannot be started. Blocks; has no owner and cannot be cancelled. Standard error goes to the application's
/// own.
[[nodiscard]] QString runCommandSimple(platform::ProcessLauncher &launcher, const QString &commandLine);

} // namespace sealwright
