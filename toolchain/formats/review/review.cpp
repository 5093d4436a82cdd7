#include "formats/review/review.h"

#include "formats/codesignature/filesigner.h"

#include "formats/codesignature/verification.h"
#include "formats/package/packagejudgement.h"
#include "formats/review/contentwalk.h"
#include "formats/review/judge.h"
#include "formats/review/linktarget.h"
#include "formats/review/verifying.h"
#include "formats/udif/imagesignature.h"

#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain::review {

namespace {

class Reviewer : public WalkVisitor {
public:
    Reviewer(QString archiveName, ItemReview &review)
        : m_archiveName(std::move(archiveName))
        , m_review(review)
    {
    }

    void folder(const WalkPlace &place, const QStringList &names) override
    {
        checkLength(place);
        const FoundBundle bundle = bundleAt(place.file, names);
        if (bundle.executable.isEmpty())
            return;
        m_bundles.insert(bundle.executable, bundle.folder);
        m_links.add(bundle.folder);
    }

    void file(const WalkFile &file) override { checkLength(file.place); }
    void script(const WalkFile &file) override { checkLength(file.place); }

    /// A link of a bundle that leads nowhere, or out of it, is no part of what a seal vouches for.
    void link(const WalkPlace &place, const QString &target) override
    {
        checkLength(place);
        if (m_links.judge(place.file, target).value_or(LinkTarget::good) != LinkTarget::good)
            object(place, {}, Objection::invalid);
    }

    void machO(const WalkFile &file) override
    {
        checkLength(file.place);
        CodeFacts facts = readCodeFacts(file.place.file, m_store);
        if (!facts.damage.isEmpty())
            return object(file.place, {}, Objection::damaged);
        verifySignatures(m_bundles.value(file.place.file, file.place.file), facts, m_store);
        for (const SliceFacts &slice : facts.slices)
            judge(file.place, slice);
    }

    void damagedArchive(const WalkFile &file, const QString &reason) override
    {
        if (file.place.isInArchive())
            m_review.issues.append(
                {u"warning"_s, pathOf(file.place), u"The archive cannot be read: %1."_s.arg(reason), {}, {}});
        else
            damage(reason);
    }

    void damage(const QString &reason)
    {
        m_review.isDamaged = true;
        m_review.issues.append(
            {u"error"_s, m_archiveName, u"The archive cannot be read: %1."_s.arg(reason), {}, {}});
    }

    /// The signature of a disk image itself, if it has one: the service takes images without.
    void judgeImage(const QString &image)
    {
        const auto code = codesignature::readSignedCode(image);
        if (!code || code->kind != codesignature::CodeKind::diskImage)
            return;
        if (!code->isSigned())
            return vouchForUnsignedImage(image);
        const SignatureFacts signature = signatureFacts(code->native(), m_store);
        if (signature.isInvalid || !codesignature::verifyCode(image, {}).problem.isNone())
            object({u"."_s, image, 0}, {}, Objection::invalid);
        else if (!signature.isDeveloperId)
            object({u"."_s, image, 0}, {}, Objection::notDeveloperId);
        else
            m_review.ticketContents.append(
                {m_archiveName, {}, signature.cdHash, signature.hashType == 1 ? 1 : 2});
    }

    void vouchForUnsignedImage(const QString &image)
    {
        const auto implied = codesignature::impliedSignatureOfImage(image);
        const auto directory = implied
            ? codesignature::CodeDirectory::parse(implied->blob(codesignature::slot::codeDirectory))
            : implied.failure();
        if (directory)
            m_review.ticketContents.append({m_archiveName, {}, directory->cdHash(), 2});
    }

    /// The signature of a package, which the service wants.
    void judgePackage(const QString &path)
    {
        const WalkPlace place{u"."_s, path, 0};
        const auto archive = xar::Archive::open(path);
        if (!archive)
            return; // told where it is to be unpacked
        const auto judgement = package::judgePackage(*archive);
        using Verdict = package::PackageJudgement::Verdict;
        if (judgement.verdict == Verdict::notSigned)
            object(place, {}, Objection::notSigned);
        else if (judgement.verdict == Verdict::damaged)
            object(place, {}, Objection::invalid);
        else if (judgement.verdict == Verdict::untrusted)
            object(place, {}, Objection::notDeveloperId);
        else if (!judgement.timestamp)
            object(place, {}, Objection::noTimestamp);
        // a package's record is named "2/1/…" whatever the kind of its checksum
        m_review.ticketContents.append({m_archiveName, {}, archive->checksum().left(20), 1});
    }

private:
    QString pathOf(const WalkPlace &place) const
    {
        return place.path == "."_L1 ? m_archiveName : m_archiveName + u'/' + place.path;
    }

    void checkLength(const WalkPlace &place)
    {
        const qsizetype length = place.path.toUtf8().size();
        if (length > longestPath)
            m_review.issues.append({u"error"_s, pathOf(place), tooLongText(length), {}, {}});
    }

    void judge(const WalkPlace &place, const SliceFacts &slice)
    {
        const QList<Objection> objections = objectionsTo(slice);
        for (const Objection objection : objections)
            object(place, slice.architecture, objection);
        if (objections.isEmpty() && !slice.signature.cdHash.isEmpty())
            m_review.ticketContents.append({pathOf(place), slice.architecture, slice.signature.cdHash,
                                            slice.signature.hashType == 1 ? 1 : 2});
    }

    void object(const WalkPlace &place, const QString &architecture, Objection objection)
    {
        const QString url = documentUrl(objection);
        m_review.issues.append({u"error"_s, pathOf(place), message(objection),
                                url.isEmpty() ? QString() : url,
                                architecture.isEmpty() ? QString() : architecture});
    }

    const QString m_archiveName;
    const TrustStore m_store = TrustStore::ofThisMachine();
    BundleLinks m_links;
    QHash<QString, QString> m_bundles; ///< by their main executables
    ItemReview &m_review;
};

bool isUpload(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    return archiveKind(file.read(tellingBytes), path) != ArchiveKind::none || udif::endsAsDiskImage(path);
}

} // namespace

bool ItemReview::isAccepted() const
{
    return std::none_of(issues.cbegin(), issues.cend(),
                        [](const ReviewIssue &issue) { return issue.severity == "error"_L1; });
}

ItemReview reviewItem(const QString &path, const QString &archiveName)
{
    ItemReview review;
    Reviewer reviewer(archiveName, review);
    UnpackBudget budget;
    if (isUpload(path)) {
        // The item's own signature comes first: where it does not hold, damage within follows from that.
        reviewer.judgeImage(path);
        if (xar::Archive::looksLikeOne(path))
            reviewer.judgePackage(path);
        walkContents(path, budget, reviewer);
    } else {
        reviewer.damage(u"it is neither a zip archive nor a disk image nor a flat package"_s);
    }
    if (!review.isAccepted())
        review.ticketContents.clear();
    return review;
}

} // namespace toolchain::review
