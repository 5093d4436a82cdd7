// What the notary service and the storage answer, good or bad.

#include "formats/notary/replyreader.h"
#include "formats/notary/serviceerror.h"
#include "fuzz/fuzzing.h"

using namespace toolchain::notary;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = inputBytes(data, size);
    const auto place = readPlace(bytes);
    require(!place || (isRequestId(place->id) && !place->bucket.isEmpty() && !place->object.isEmpty()));
    const auto status = readStatus(bytes);
    require(!status || !status->status.isEmpty());
    const auto history = readHistory(bytes);
    for (const Submission &submission : history.value_or(QList<Submission>()))
        require(isRequestId(submission.id));
    const auto address = readLogAddress(bytes);
    require(!address || isAcceptable(*address));
    (void)isLogOf(QStringLiteral("x"), bytes);
    require(uploadIdIn(bytes).size() <= 4096);
    (void)storageErrorCode(bytes);
    HttpReply reply;
    reply.body = bytes;
    for (const int code : {200, 400, 401, 403, 404, 429, 500}) {
        reply.status = code;
        for (const QString &text : {failureOf(reply).text, storageFailureOf(reply).text})
            require(!text.isEmpty() && !text.contains(QChar(27)) && text.size() < 2000);
    }
    return 0;
}
