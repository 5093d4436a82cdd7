#pragma once

#include "scripting/dbus/bushandlers.h"

namespace sealwright {

/// The handlers of a receiver's commands, by their methods.
template <class Receiver, class Found = Receiver &>
class CommandsOf {
public:
    explicit CommandsOf(Found (*receiver)(const BusObject &))
        : m_receiver(receiver)
    {
    }

    CommandHandler operator()(void (Receiver::*handler)(const ScriptCommandPtr &)) const
    {
        return [receiver = m_receiver, handler](const BusObject &object, const ScriptCommandPtr &command) {
            (receiver(object).*handler)(command);
        };
    }

    /// The commands that the application and a document have alike.
    QHash<QString, CommandHandler> shared() const
    {
        const auto &carriedOutBy = *this;
        return {
            {QStringLiteral("AESubmitForNotarizing:"), carriedOutBy(&Receiver::AESubmitForNotarizing)},
            {QStringLiteral("AEStapleOnly:"), carriedOutBy(&Receiver::AEStapleOnly)},
            {QStringLiteral("AESignOnly:"), carriedOutBy(&Receiver::AESignOnly)},
            {QStringLiteral("AEFetchHistory:"), carriedOutBy(&Receiver::AEFetchHistory)},
            {QStringLiteral("AEPrepareForNotarizing:"), carriedOutBy(&Receiver::AEPrepareForNotarizing)},
            {QStringLiteral("AEExamine:"), carriedOutBy(&Receiver::AEExamine)},
        };
    }

private:
    Found (*m_receiver)(const BusObject &);
};

} // namespace sealwright
