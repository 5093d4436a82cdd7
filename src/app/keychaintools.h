#pragma once

#include "app/keychaincommands.h"
#include "platform/host.h"

#include <QObject>

#include <functional>

namespace sealwright {

/// Runs the programs of the keychain in the background. Main thread.
class KeychainTools {
public:
    /// `program` is the path of the program that manages the keychain; empty where there is none.
    KeychainTools(const platform::Host &host, QString program);

    /// Whether there is a keychain that can be managed from here.
    bool isThere() const { return !m_program.isEmpty(); }

    /// Those of the application that manages it.
    platform::Preferences &preferences() const { return m_host.preferences; }

    /// What the program printed, or what went wrong.
    using Answer = platform::Result<QString>;
    /// Starts the program and returns at once. The end is told on the main thread, unless the context has
    /// gone.
    void run(const keychain::Command &command, const QObject &context,
             std::function<void(const Answer &)> then) const;
    /// The same one after the other, up to the first that fails. The answer is the last one's.
    void runAll(const QList<keychain::Command> &commands, const QObject &context,
                std::function<void(const Answer &)> then) const;

private:
    const platform::Host m_host;
    const QString m_program;
};

} // namespace sealwright
