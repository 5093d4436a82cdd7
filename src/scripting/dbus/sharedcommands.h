#pragma once

#include "scripting/dbus/scriptcalls.h"

namespace scriptcalls {

/// The commands that the application and a document have alike. The receiver is what carries them out.
template <class Receiver>
QList<BusMethod> sharedCommands(Receiver &(*receiver)(const BusObject &))
{
    const CommandArgument at{argument::at, ArgumentType::fileUrl};
    const CommandArgument showingDialogs{argument::showingDialogs, ArgumentType::boolean};
    const auto carriedOutBy = [receiver](void (Receiver::*handler)(const ScriptCommandPtr &)) {
        return [receiver, handler](const BusObject &object, const ScriptCommandPtr &command) {
            (receiver(object).*handler)(command);
        };
    };
    return {
        command(QStringLiteral("SubmitForNotarizing"),
                {at, showingDialogs, {argument::skippingStapling, ArgumentType::boolean}},
                carriedOutBy(&Receiver::AESubmitForNotarizing)),
        command(QStringLiteral("StapleOnly"), {at, showingDialogs}, carriedOutBy(&Receiver::AEStapleOnly)),
        command(QStringLiteral("SignOnly"), {at, showingDialogs}, carriedOutBy(&Receiver::AESignOnly)),
        command(
            QStringLiteral("FetchHistory"),
            {{argument::pageToFetch, ArgumentType::pageNumber}, {argument::xmlOutput, ArgumentType::boolean}},
            carriedOutBy(&Receiver::AEFetchHistory)),
        command(QStringLiteral("PrepareForNotarizing"), {at, {argument::signingIdentity, ArgumentType::text}},
                carriedOutBy(&Receiver::AEPrepareForNotarizing)),
    };
}

} // namespace scriptcalls
