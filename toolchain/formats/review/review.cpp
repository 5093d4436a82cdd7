#include "formats/review/review.h"

#include "formats/review/contentwalk.h"
#include "formats/review/judge.h"
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

    void machO(const WalkFile &file) override
    {
        const CodeFacts facts = readCodeFacts(file.place.file, m_store);
        if (!facts.damage.isEmpty())
            return object(file.place, {}, Objection::Damaged);
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

private:
    QString pathOf(const WalkPlace &place) const
    {
        return place.path == "."_L1 ? m_archiveName : m_archiveName + u'/' + place.path;
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
    ItemReview &m_review;
};

bool isUpload(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    return archiveKind(file.read(tellingBytes), path) != ArchiveKind::None || udif::endsAsDiskImage(path);
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
    if (isUpload(path))
        walkContents(path, budget, reviewer);
    else
        reviewer.damage(u"it is neither a zip archive nor a disk image nor a flat package"_s);
    if (!review.isAccepted())
        review.ticketContents.clear();
    return review;
}

} // namespace toolchain::review
