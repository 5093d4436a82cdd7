#include "formats/codesignature/asn1time.h"

#include <openssl/err.h>

namespace toolchain {

QDateTime momentOf(const ASN1_TIME *time)
{
    tm parts = {};
    const bool isTime = time && ASN1_TIME_to_tm(time, &parts) == 1;
    ERR_clear_error();
    if (!isTime)
        return {};
    constexpr int firstYear = 1900;
    return QDateTime(QDate(parts.tm_year + firstYear, parts.tm_mon + 1, parts.tm_mday),
                     QTime(parts.tm_hour, parts.tm_min, parts.tm_sec), Qt::UTC);
}

} // namespace toolchain
