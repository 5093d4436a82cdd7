#include "notaryd/verdict.h"

#include "notaryd/filedigest.h"

#include "formats/notaryreview.h"
#include "formats/review/review.h"

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
    const auto review = toolchain::review::reviewItem(path, request.archiveName);
    for (const auto &issue : review.issues)
        request.issues.append({issue.path, issue.message, issue.severity, issue.architecture, issue.docUrl});
    for (const auto &content : review.ticketContents)
        request.ticketContents.append(
            {content.path, content.hashType, content.cdHash.toHex(), content.architecture});
    if (review.isAccepted())
        request.sealDigests = toolchain::reviewUpload(path, request.archiveName).sealDigests;
}

} // namespace notaryd
