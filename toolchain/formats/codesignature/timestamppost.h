#pragma once

#include <QByteArray>

#include "formats/codesignature/timestampclient.h"
#include "platform/result.h"

namespace toolchain {

/// Posts a question to a time-stamp authority and answers the body of its reply (RFC 3161, 3.4). Blocks, with
/// a bound on time and on the reply's size. Fails for every status but 200 and every kind of body but a
/// time-stamp reply.
[[nodiscard]] platform::Result<QByteArray> postTimestampQuery(const TimestampService &service,
                                                              const QByteArray &query);

} // namespace toolchain
