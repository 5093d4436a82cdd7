#include "pkgutil/signaturereport.h"

#include "formats/cryptography.h"
#include "support/console.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using toolchain::package::PackageJudgement;

namespace toolchain {

namespace {

constexpr qsizetype bytesInLine = 22;
constexpr qsizetype ruleLength = 72;

QString timeText(const QDateTime &time)
{
    return time.toUTC().toString(u"yyyy-MM-dd HH:mm:ss"_s) + u" +0000"_s;
}

QString trustedStatus(Anchor anchor)
{
    return anchor == Anchor::apple ? u"signed by a developer certificate issued by Apple for distribution"_s
                                   : u"signed by a developer certificate of this machine for distribution"_s;
}

QString statusOf(const PackageJudgement &judgement)
{
    switch (judgement.verdict) {
    case PackageJudgement::Verdict::notSigned:
        return u"no signature"_s;
    case PackageJudgement::Verdict::damaged:
        return u"package is invalid (checksum did not verify)"_s;
    case PackageJudgement::Verdict::untrusted:
        return judgement.trust.problem == TrustProblem::expired
            ? u"signed by a certificate that has since expired"_s
            : u"signed by untrusted certificate"_s;
    case PackageJudgement::Verdict::good:
        break;
    }
    return trustedStatus(judgement.trust.anchor);
}

QString notarizationOf(const ticket::TicketJudgement &ticket)
{
    if (!ticket.isGood())
        return {};
    return ticket.anchor == Anchor::apple
        ? u"   Notarization: trusted by the Apple notary service\n"_s
        : u"   Notarization: trusted by the notary service of this machine\n"_s;
}

QDateTime expiryOf(X509 *certificate)
{
    tm time{};
    if (ASN1_TIME_to_tm(X509_get0_notAfter(certificate), &time) != 1)
        return {};
    return {QDate(time.tm_year + 1900, time.tm_mon + 1, time.tm_mday),
            QTime(time.tm_hour, time.tm_min, time.tm_sec), Qt::UTC};
}

QString fingerprintLines(const QByteArray &certificate)
{
    const QByteArray digest = QCryptographicHash::hash(certificate, QCryptographicHash::Sha256);
    QString lines;
    for (qsizetype from = 0; from < digest.size(); from += bytesInLine)
        lines += QString(11, u' ') + QString::fromLatin1(digest.mid(from, bytesInLine).toHex(' ').toUpper())
            + u'\n';
    return lines;
}

QString certificateLines(qsizetype number, const QByteArray &der)
{
    const Certificate certificate = certificateFrom(der);
    if (!certificate)
        return {};
    return u"    %1. %2\n       Expires: %3\n       SHA256 Fingerprint:\n"_s.arg(number).arg(
               subjectEntryOf(certificate.get(), NID_commonName), timeText(expiryOf(certificate.get())))
        + fingerprintLines(der);
}

QString chainLines(const QList<QByteArray> &chain)
{
    QStringList blocks;
    for (qsizetype number = 0; number < chain.size(); ++number)
        blocks.append(certificateLines(number + 1, chain[number]));
    const QString rule = QString(7, u' ') + QString(ruleLength, u'-') + u'\n';
    return blocks.isEmpty() ? QString() : u"   Certificate Chain:\n"_s + blocks.join(rule) + u'\n';
}

} // namespace

QString signatureReport(const QString &name, const PackageJudgement &judgement)
{
    QString report = u"Package \"%1\":\n   Status: %2\n"_s.arg(name, statusOf(judgement));
    if (judgement.verdict == PackageJudgement::Verdict::notSigned
        || judgement.verdict == PackageJudgement::Verdict::damaged)
        return report;
    report += notarizationOf(judgement.ticket);
    if (judgement.timestamp)
        report += u"   Signed with a trusted timestamp on: "_s + timeText(*judgement.timestamp) + u'\n';
    return report + chainLines(judgement.trust.chain);
}

int reportSignature(const xar::Archive &archive)
{
    const PackageJudgement judgement = package::judgePackage(archive);
    print(signatureReport(QFileInfo(archive.path()).fileName(), judgement).toStdString());
    if (!judgement.problem.isEmpty())
        printError("pkgutil: " + archive.path().toStdString() + ": " + judgement.problem.toStdString()
                   + "\n");
    return judgement.isGood() ? 0 : 1;
}

} // namespace toolchain
