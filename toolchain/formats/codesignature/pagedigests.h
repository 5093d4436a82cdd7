#pragma once

#include "formats/codesignature/codedirectory.h"

#include <QByteArrayView>

#include <functional>

namespace toolchain::codesignature {

/// Reads bytes of the code from an offset into a buffer, all that is asked for. Called by several threads at
/// once. False, with errno telling why, if that fails.
using CodeReader = std::function<bool(quint64 offset, char *buffer, quint64 length)>;

/// Takes what has been read, and the digests of its pages, one run for each kind. Called by several threads
/// at once, in any order. False, with errno telling why, to stop.
struct PageRun {
    quint64 offset = 0; ///< of the code
    QByteArrayView code;
    quint64 firstPage = 0;
    QList<QByteArray> digests; ///< for each kind the digests of all pages of the run
};
using PageSink = std::function<bool(const PageRun &)>;

/// Digests all pages of code of a length, each byte read once, on as many threads as the machine has
/// processors, four at most. A page shift of 0 is one page that holds everything. The memory does not depend
/// on the length. False, with errno telling why, if reader or sink fail.
[[nodiscard]] bool digestPages(quint64 length, quint8 pageShift, const QList<HashType> &kinds,
                               const CodeReader &reader, const PageSink &sink);

} // namespace toolchain::codesignature
