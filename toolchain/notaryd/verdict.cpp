#include "notaryd/verdict.h"

#include "notaryd/filedigest.h"

#include "formats/notaryreview.h"
#include "formats/review/review.h"

#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace notaryd {

namespace {

/// A zip archive ends in a record of its directory, behind which a comment of 64 KiB may stand
/// (APPNOTE.TXT, 4.3.16). Whoever reads an archive from its beginning would not miss it.
bool isCutShort(const QString &path)
{
    constexpr qint64 farthest = 22 + 65535;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.read(4) != "PK\3\4")
        return false;
    return !file.seek(std::max<qint64>(0, file.size() - farthest)) || !file.readAll().contains("PK\5\6");
}

} // namespace

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
    if (isCutShort(path)) {
        request.issues.append({request.archiveName, u"The archive is damaged: its end is missing."_s});
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
