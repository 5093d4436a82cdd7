#include "notaryd/verdict.h"

#include "notaryd/filedigest.h"

#include "formats/review/review.h"
#include "formats/udif/imagesignature.h"
#include "support/confinement.h"
#include "support/console.h"

#include <QFile>
#include <QProcess>

#include <signal.h>
#include <sys/prctl.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace notaryd {

namespace {

/// What an upload is shows in its bytes: in the storage it has no name that would tell.
bool canBeReviewed(const QString &path)
{
    QFile file(path);
    const QByteArray head = file.open(QIODevice::ReadOnly) ? file.read(4) : QByteArray();
    return head == "PK\3\4" || head == "PK\5\6" || head == "xar!" || toolchain::udif::endsAsDiskImage(path);
}

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

void judge(toolchain::NotaryRequest &request, const QString &path)
{
    const QByteArray digest = digestOfFile(path);
    if (digest != request.archiveDigest.toLower()) {
        request.issues.append(
            {request.archiveName,
             u"The uploaded file is not the one that was announced: its SHA-256 differs."_s});
        return;
    }
    if (!canBeReviewed(path)) {
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
}

/// The reviewer ends with the service. The signals that end the service are blocked in it.
void becomeReviewer()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

std::optional<toolchain::NotaryRequest> decidedApart(const toolchain::NotaryRequest &request,
                                                     const QString &path)
{
    QProcess reviewer;
    reviewer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    reviewer.setChildProcessModifier(becomeReviewer);
    reviewer.start(u"/proc/self/exe"_s, {QLatin1String(reviewOption), path});
    reviewer.write(jsonOf(request));
    reviewer.closeWriteChannel();
    constexpr int withoutLimit = -1;
    if (!reviewer.waitForFinished(withoutLimit) || reviewer.exitStatus() != QProcess::NormalExit
        || reviewer.exitCode() != 0)
        return std::nullopt;
    return toolchain::requestFromJson(reviewer.readAllStandardOutput());
}

} // namespace

void decide(toolchain::NotaryRequest &request, const QString &path)
{
    if (const auto decided = decidedApart(request, path))
        request = *decided;
    else
        request.issues.append(
            {request.archiveName, u"The archive cannot be read: its review came to an early end."_s});
}

int reviewAlone(const QString &path)
{
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return EXIT_FAILURE;
    auto request = toolchain::requestFromJson(input.readAll());
    if (!request)
        return EXIT_FAILURE;
    const toolchain::ReaderConfinement confinement;
    confinement.tellComplaint("sealwright-notaryd");
    judge(*request, path);
    toolchain::print(jsonOf(*request).toStdString());
    return EXIT_SUCCESS;
}

} // namespace notaryd
