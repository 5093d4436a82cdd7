#include "ui/practice.h"

#include "app/keychaintools.h"
#include "platform/host.h"
#include "platform/preferences.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString practises = u"practises"_s; ///< a key of the settings
constexpr auto ofThisMachine = "local"_L1;

} // namespace

bool practice::isOn(const platform::Preferences &preferences)
{
    return preferences.boolean(practises);
}

void practice::heedService(platform::Preferences &preferences, const QString &service)
{
    const bool isLocal = service == ofThisMachine;
    if (isLocal != isOn(preferences))
        preferences.setValue(practises, isLocal);
}

void practice::ask(const platform::Host &host, const QString &program, const QObject &context)
{
    const KeychainTools keychain(host, program);
    if (!keychain.isThere())
        return heedService(host.preferences, {});
    keychain.run(keychain::presentNotary(), context,
                 [&preferences = host.preferences](const KeychainTools::Answer &answer) {
                     if (answer)
                         heedService(preferences, answer->trimmed());
                 });
}

} // namespace sealwright
