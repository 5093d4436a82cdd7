#pragma once

#include "platform/result.h"

namespace platform {

/// Moves the item to a path that must be free, to another file system too.
Outcome moveTree(const QString &from, const QString &to);

/// The way to another file system. The item leaves its place in one step, once the whole copy is made, and
/// any failure up to then leaves it there, and no copy. If what has left its place cannot be deleted after
/// that, the item is at `to`, and the failure names what is left over.
Outcome moveTreeByCopying(const QString &from, const QString &to);

/// Puts the item at `replacement` in the place of the one at `path`, which is deleted as far as possible. A
/// file changes in one step.
Outcome replaceTree(const QString &path, const QString &replacement);

/// The way from another file system. After a failure the replacement is where it was.
Outcome replaceTreeByCopying(const QString &path, const QString &replacement);

} // namespace platform
