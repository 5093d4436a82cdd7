#include "altool/providers.h"

#include "formats/identities.h"

#include <QRegularExpression>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

/// The team of "Developer ID Application: Example Corp (A1B2C3D4E5)"; nothing for another form of name.
std::optional<Provider> providerOf(const QString &commonName)
{
    static const QRegularExpression form(uR"(\A(?:[^:]+: )?(\S.*?) ?\(([0-9A-Za-z]+)\)\z)"_s);
    const auto match = form.match(commonName);
    if (!match.hasMatch())
        return std::nullopt;
    return Provider{match.captured(2), match.captured(1), match.captured(2)};
}

bool isThere(const QList<Provider> &providers, const Provider &wanted)
{
    return std::any_of(providers.begin(), providers.end(), [&wanted](const Provider &provider) {
        return provider.teamIdentifier == wanted.teamIdentifier;
    });
}

} // namespace

ProviderList readProviders(const QString &keychainFolder)
{
    const IdentityList list = readIdentities(keychainFolder);
    ProviderList result{{}, list.warnings};
    for (const Identity &identity : list.identities) {
        if (!identity.isValidNow)
            continue;
        const auto provider = providerOf(identity.commonName);
        if (!provider)
            result.warnings.append(identity.commonName + u": names no team identifier in parentheses"_s);
        else if (!isThere(result.providers, *provider))
            result.providers.append(*provider);
    }
    return result;
}

} // namespace toolchain
