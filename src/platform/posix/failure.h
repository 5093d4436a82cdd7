#pragma once

#include "platform/result.h"

#include <QByteArray>

namespace platform {

/// "Cannot VERB 'PATH': REASON", the reason being that of errno.
QString failureText(const QString &verb, const QString &path);
Outcome failure(const QString &verb, const QString &path);

/// The same for an operation with a target: "Cannot VERB 'PATH' to 'TARGET': REASON".
Outcome failure(const QString &verb, const QString &path, const QString &target);

/// The path as the system takes it. A slash at the end would make a link stand for what it leads to; it goes.
/// Empty, which names nothing, for a path with a null character, since the system would take what stands
/// before it for the whole.
QByteArray nativePath(const QString &path);

} // namespace platform
