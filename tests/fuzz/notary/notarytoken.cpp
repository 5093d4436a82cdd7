// A request's token, which nobody but the holder of the enrolled key can make.

#include "fuzz/fuzzing.h"
#include "notaryd/tokencheck.h"

#include <QTemporaryDir>

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir keys; // without any
    const QByteArray header = "Bearer " + inputBytes(data, size);
    (void)notaryd::keyIdIn(header);
    require(!notaryd::objectionToToken(header, keys.path(), QDateTime::currentDateTimeUtc()).isEmpty());
    return 0;
}
