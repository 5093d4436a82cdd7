#pragma once

#include <QString>

namespace sealwright {

/// Who asks the notary service.
struct Credentials {
    QString appleID;
    QString passwordKey; ///< the name of a keychain item; the tool reads the password there by itself
    QString providerName; ///< the team's short name; null or empty for none
};

/// In which form the notary tool replies.
enum class OutputFormat { normal, xml };

} // namespace sealwright
