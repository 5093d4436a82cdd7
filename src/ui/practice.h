#pragma once

#include <QObject>

namespace platform {
struct Host;
class Preferences;
} // namespace platform

namespace sealwright {

/// Whether the tools ask the notary service of this machine. What its texts call Apple's is then ours, and
/// nobody else accepts what it notarizes, which a person who looks at a window should not have to remember.
namespace practice {

/// As far as is known. Any thread.
[[nodiscard]] bool isOn(const platform::Preferences &preferences);

/// Takes note of what the tools are set to ask: "apple", "local" or an address. Main thread.
void heedService(platform::Preferences &preferences, const QString &service);

/// Asks the program that manages the keychain, and takes note of what it says some time later. Nothing where
/// there is no program. Main thread.
void ask(const platform::Host &host, const QString &program, const QObject &context);

} // namespace practice

} // namespace sealwright
