#pragma once

#include "platform/host.h"
#include "platform/scriptcommand.h"
#include "run/waitrecord.h"

#include <QUrl>

#include <optional>

namespace platform {
class FileService;
}

namespace sealwright {

/// The checks that commands of the application and of a document share.
namespace commandchecks {

/// The item of a command if it can be submitted; nothing, with the error set on the command, if it cannot.
[[nodiscard]] std::optional<QUrl> submittableItem(const platform::FileService &files,
                                                  const ScriptCommandPtr &command);

/// The same for an item that can be signed alone: an app or a plain folder.
[[nodiscard]] std::optional<QUrl> signableItem(const platform::FileService &files,
                                               const ScriptCommandPtr &command);

/// The submission that a command's item stands for, if its verdict is awaited and no run attends to it;
/// nothing, with the error set on the command, otherwise.
[[nodiscard]] std::optional<WaitRecord> openWait(const platform::Host &host, const ScriptCommandPtr &command);

/// The identity that a command names, with or without its prefix; null if it names none of the known ones,
/// which is no error.
[[nodiscard]] QString knownIdentity(const ScriptCommandPtr &command, const QStringList &identities);

/// True for the word "ready"; otherwise the executing command gets the error. `receiver` is "Application" or
/// "Document".
[[nodiscard]] bool isReady(const QString &statusString, const QString &receiver);
/// The text of that error.
[[nodiscard]] QString busyText(const QString &receiver, const QString &statusString);

} // namespace commandchecks

} // namespace sealwright
