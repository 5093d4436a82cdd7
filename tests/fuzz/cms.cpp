#include "fuzz/fuzzing.h"

#include "formats/codesignature/cmsreader.h"
#include "formats/codesignature/timestampclient.h"
#include "formats/codesignature/timestamptoken.h"

using namespace toolchain;

/// Bytes as the CMS of a code signature, as a time-stamp token, and as the reply of a time-stamp authority.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = inputBytes(data, size);
    static const TrustStore store;
    const auto signature = readCms(bytes);
    if (signature) {
        const SignedContent content{[](QCryptographicHash::Algorithm) { return QByteArray(32, 'c'); },
                                    {{2, "digest"}}};
        require(!judgeCms(*signature, content, TrustPurpose::codeSigning, store).isGood());
    }
    require(!checkTimestamp(bytes, "stamped", store));
    require(!tokenInReply(bytes, "stamped", "nonce", store));
    return 0;
}
