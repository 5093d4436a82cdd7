#include "formats/review/review.h"

#include "formats/review/containers.h"
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
        if (names.contains(u"PackageInfo"_s) && isInProduct(place))
            m_components.append(place.path);
        m_hasSignedBundle = m_hasSignedBundle || names.contains(u"_CodeSignature"_s);
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
        const QString bundle = m_bundles.value(file.place.file, file.place.file);
        verifySignatures(bundle, facts, m_store);
        for (const SliceFacts &slice : facts.slices)
            judge(file.place, bundle, slice);
    }

    void damagedArchive(const WalkFile &file, const QString &reason) override
    {
        if (!file.place.isInArchive())
            return damage(reason);
        const QString severity = isContainer(file) ? u"error"_s : u"warning"_s;
        m_review.issues.append(
            {severity, pathOf(file.place), u"The archive cannot be read: %1."_s.arg(reason), {}, {}});
    }

    void tooDeep(const WalkFile &file) override
    {
        m_review.issues.append({u"warning"_s,
                                pathOf(file.place),
                                u"The archive lies in too many others to be looked into."_s,
                                {},
                                {}});
    }

    void damage(const QString &reason)
    {
        m_review.isDamaged = true;
        m_review.issues.append(
            {u"error"_s, m_archiveName, u"The archive cannot be read: %1."_s.arg(reason), {}, {}});
    }

    /// A container is vouched for beside what it holds, so that each can be stapled by itself.
    void enterArchive(const WalkFile &file) override
    {
        m_archives.append({file.place.path, file.beginning.startsWith("xar!")});
        if (file.place.path != "."_L1)
            judge(file.place, nestedFacts(file.place.file, m_store));
    }
    void leaveArchive(const WalkFile &) override { m_archives.removeLast(); }

    /// The item's own signature.
    void judgeItem(const QString &item)
    {
        const WalkPlace place{u"."_s, item, 0};
        judge(place, imageFacts(item, m_store));
        judge(place, packageFacts(item));
    }

    /// Where nothing has been found wrong: whether there is anything to make a ticket for. A container that
    /// is signed itself has something, although the real service is said to look at what it holds alone.
    void objectToNoCode()
    {
        if (!m_review.isAccepted() || m_hasSignedBundle || m_hasSignedCode)
            return;
        const QString found = u"Package %1 has no signed executables or bundles."_s.arg(m_archiveName);
        const bool isSignedItself = !m_review.ticketContents.isEmpty();
        m_review.issues.append({isSignedItself ? u"warning"_s : u"error"_s,
                                m_archiveName,
                                found
                                    + (isSignedItself ? u" Apple's notary service may refuse it."_s
                                                      : u" No tickets can be generated."_s),
                                {},
                                {}});
    }

private:
    struct EnteredArchive {
        QString path;
        bool isPackage = false;
    };

    /// What lies in a component of a package is told as Apple's logs tell it: "App.pkg/Part.pkg Contents/…".
    QString pathOf(const WalkPlace &place) const
    {
        QString path = place.path;
        for (auto component = m_components.crbegin(); component != m_components.crend(); ++component) {
            if (path.startsWith(*component + u'/')) // from the inside out
                path.insert(component->size(), " Contents"_L1);
        }
        return path == "."_L1 ? m_archiveName : m_archiveName + u'/' + path;
    }

    /// Whether the place lies right in a package.
    bool isInProduct(const WalkPlace &place) const
    {
        if (m_archives.isEmpty() || !m_archives.last().isPackage)
            return false;
        const QString folder = place.path.contains(u'/') ? place.path.section(u'/', 0, -2) : u"."_s;
        return place.path != m_archives.last().path && folder == m_archives.last().path;
    }

    /// What is made to be installed from, so that nobody may vouch for it unseen.
    static bool isContainer(const WalkFile &file)
    {
        const ArchiveKind kind = archiveKind(file.beginning, file.place.file);
        return kind == ArchiveKind::image || kind == ArchiveKind::package;
    }

    void checkLength(const WalkPlace &place)
    {
        const qsizetype length = place.path.toUtf8().size();
        if (length > longestPath)
            m_review.issues.append({u"error"_s, pathOf(place), tooLongText(length), {}, {}});
    }

    /// `bundle` is the one whose main executable it is, or the file itself.
    void judge(const WalkPlace &place, const QString &bundle, const SliceFacts &slice)
    {
        const QList<Objection> objections = objectionsTo(slice);
        for (const Objection objection : objections)
            object(place, slice.architecture, objection);
        if (!objections.isEmpty() || slice.signature.cdHash.isEmpty())
            return;
        m_hasSignedCode = true;
        const qsizetype below = place.file.size() - bundle.size();
        if (below > 0)
            vouchFor(pathOf({place.path.chopped(below), bundle, place.archiveDepth}), slice);
        vouchFor(pathOf(place), slice);
    }

    void vouchFor(const QString &path, const SliceFacts &slice)
    {
        m_review.ticketContents.append(
            {path, slice.architecture, slice.signature.cdHash, slice.signature.hashType == 1 ? 1 : 2});
    }

    void judge(const WalkPlace &place, const ContainerFacts &container)
    {
        for (const Objection objection : container.objections)
            object(place, {}, objection);
        if (container.hash)
            m_review.ticketContents.append({pathOf(place), {}, container.hash->bytes, container.hash->type});
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
    QList<EnteredArchive> m_archives; ///< that are open, the innermost last
    QStringList m_components; ///< of packages; paths of their folders, an inner one behind the one around it
    ItemReview &m_review;
    bool m_hasSignedBundle = false;
    bool m_hasSignedCode = false;
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
        reviewer.judgeItem(path);
        walkContents(path, budget, reviewer);
        reviewer.objectToNoCode();
    } else {
        reviewer.damage(u"it is neither a zip archive nor a disk image nor a flat package"_s);
    }
    if (!review.isAccepted())
        review.ticketContents.clear();
    return review;
}

} // namespace toolchain::review
