#include "notaryd/verdict.h"

#include "notaryd/filedigest.h"

#include "formats/notaryreview.h"

using namespace Qt::StringLiterals;

namespace notaryd {

void decide(toolchain::NotaryRequest &request, const QString &path)
{
    const QByteArray digest = digestOfFile(path);
    if (digest != request.archiveDigest.toLower()) {
        request.issues.append(
            {request.archiveName,
             u"The uploaded file is not the one that was announced: its SHA-256 differs."_s});
        return;
    }
    if (!toolchain::canBeReviewed(path)) {
        request.issues.append(
            {request.archiveName, u"The file is no zip archive, no disk image and no installer package."_s});
        return;
    }
    const toolchain::Review review = toolchain::reviewUpload(path, request.archiveName);
    request.issues = review.issues;
    request.sealDigests = review.sealDigests;
}

} // namespace notaryd
