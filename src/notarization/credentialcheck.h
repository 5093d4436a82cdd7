#pragma once

#include "run/step.h"

namespace sealwright {

/// Learns by one cheap request whether Apple ID, password key and provider work together, before anything is
/// copied. Worker thread; takes one network request.
[[nodiscard]] StepResult checkAltool(Run &run);

/// What the user is told when the keychain has no such item.
extern const QString invalidCredentialMessage;

/// What a failed check tells the user; `errorString` is the tool's standard error.
[[nodiscard]] QString credentialMessage(const QString &errorString);

namespace step {
inline constexpr Step checkCredentials{.name = u"Check credentials", .work = &checkAltool};
}

} // namespace sealwright
