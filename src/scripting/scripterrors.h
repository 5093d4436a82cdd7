#pragma once

#include "document/applicationinterface.h"
#include "platform/scriptcommand.h"
#include "run/step.h"

#include <QString>

namespace sealwright {

/// The numbers by which failures reach a script, besides `scriptErrorGeneral`.
inline constexpr qint64 scriptErrorReadOnly = -10003; ///< the property cannot be written
inline constexpr qint64 scriptErrorArgument = 6; ///< an argument or a value was wrong
inline constexpr qint64 scriptErrorBusy = 1199; ///< nothing was done; try again later
inline constexpr qint64 scriptErrorNoDropDMG = 1202; ///< DropDMG was asked for and is not there
inline constexpr qint64 scriptErrorNoConfiguration = 1203; ///< there is no such DropDMG configuration
inline constexpr qint64 scriptErrorWithdrawn = 1204; ///< the property is no longer supported

/// Sets the error on the command that this thread executes, if there is one. A null text is none.
void setScriptError(qint64 number, const QString &text = {});

/// The number that belongs to a failure's title; 7 for a title without one. The comparison is exact. Any
/// thread.
[[nodiscard]] qint64 errorNumberFromString(const QString &title);

/// What a script is told about a failure.
[[nodiscard]] ScriptFailure scriptFailure(const QString &title, const QString &text, const QString &logError);

} // namespace sealwright
