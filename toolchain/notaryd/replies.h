#pragma once

#include "notaryd/faults.h"

namespace notaryd {

/// The replies of the service's gateway and of its storage to what is not in order.

/// `kind` is json, text, html, agreement or provider; empty: as the service does with that status.
[[nodiscard]] Response statusReply(int status, const QString &kind = {});

/// Status 500 with what has gone wrong on this machine.
[[nodiscard]] Response failedReply(const QString &detail);

/// Of the call for a thing that the service does not have.
[[nodiscard]] Response unknownReply(const QString &type, const QString &id);

[[nodiscard]] Response jsonReply(const QJsonObject &form);

/// The storage's XML error; the status is that of the code.
[[nodiscard]] Response storageError(const QString &code, const QString &message = {});

/// The reply that a `status` fault orders.
[[nodiscard]] Response faultReply(const Fault &fault);

/// A whole reply as a fault of the reply's content leaves it.
[[nodiscard]] Response spoilt(Response response, const Fault &fault);

} // namespace notaryd
