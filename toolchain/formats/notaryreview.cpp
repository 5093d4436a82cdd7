#include "formats/notaryreview.h"

#include <QCryptographicHash>

#include "formats/bundle.h"
#include "formats/identities.h"
#include "formats/imagecontents.h"
#include "formats/resourceseal.h"
#include "formats/signedimage.h"
#include "formats/xar/xarfile.h"
#include "formats/zipreader.h"

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

const QString infoPath = u"/Contents/Info.plist"_s;
const QString sealPath = u"/Contents/_CodeSignature/CodeResources"_s;

bool holdsEvidence(const QString &path)
{
    const qsizetype slash = path.indexOf(u'/');
    const QStringView below = QStringView(path).mid(slash);
    return slash > 0 && (below == infoPath || below == sealPath);
}

/// A folder that a disk image shows beside its bundles, such as that of its background, is no bundle.
bool liesInBundle(const QString &path)
{
    return path.section(u'/', 1, 1) == u"Contents"_s;
}

/// The names at the top that a bundle could have.
QStringList topFolders(const SealedTree &files)
{
    QStringList folders;
    for (auto file = files.begin(); file != files.end(); ++file) {
        const QString folder = file.key().section(u'/', 0, 0);
        const bool isFolder = file.key().contains(u'/') && folder != u"__MACOSX"_s;
        if (isFolder && !folders.contains(folder))
            folders.append(folder);
    }
    return folders;
}

/// The files below one folder of the archive, by their paths from there.
SealedTree subtree(const SealedTree &files, const QString &folder)
{
    SealedTree tree;
    const QString prefix = folder + u'/';
    for (auto file = files.lowerBound(prefix); file != files.end() && file.key().startsWith(prefix); ++file)
        tree.insert(file.key().mid(prefix.size()), *file);
    return tree;
}

class BundleReview {
public:
    BundleReview(const PackedFiles &contents, QString archiveName, QString bundle, Review &review)
        : m_contents(contents)
        , m_archiveName(std::move(archiveName))
        , m_bundle(std::move(bundle))
        , m_review(review)
    {
    }

    void run()
    {
        const QString executable = executableName(m_contents.kept.value(m_bundle + infoPath));
        if (executable.isEmpty())
            return object(infoPath, u"The folder is no bundle: no main executable is named."_s);
        if (!m_contents.files.contains(m_bundle + u"/Contents/MacOS/"_s + executable))
            return object(u"/Contents/MacOS/"_s + executable, u"The main executable is missing."_s);
        if (!m_contents.kept.contains(m_bundle + sealPath))
            return object({}, u"The bundle is not signed at all."_s);
        checkAgainstSeal(u"MacOS/"_s + executable);
    }

private:
    void checkAgainstSeal(const QString &executable)
    {
        const QByteArray seal = m_contents.kept.value(m_bundle + sealPath);
        m_review.sealDigests.append(QCryptographicHash::hash(seal, QCryptographicHash::Sha256).toHex());
        const auto problems =
            checkSeal(seal, subtree(m_contents.files, m_bundle + u"/Contents"_s), executable);
        for (const SealProblem &problem : problems)
            object(problem.path.isEmpty() ? sealPath : u"/Contents/"_s + problem.path,
                   u"The signature of the bundle is invalid: "_s + problem.message + u'.');
    }

    void object(const QString &path, const QString &message)
    {
        m_review.issues.append({m_archiveName + u'/' + m_bundle + path, message});
    }

    const PackedFiles &m_contents;
    const QString m_archiveName;
    const QString m_bundle;
    Review &m_review;
};

void reviewBundles(const PackedFiles &contents, const QStringList &folders, const QString &name,
                   Review &review)
{
    if (!contents.error.isEmpty()) {
        review.issues.append({name, u"The archive cannot be read: "_s + contents.error + u'.'});
        return;
    }
    for (const QString &folder : folders)
        BundleReview(contents, name, folder, review).run();
    if (folders.isEmpty())
        review.issues.append({name, u"The archive holds no bundle."_s});
}

Review reviewArchive(const QString &path, const QString &name)
{
    Review review;
    const PackedFiles contents = readZipArchive(path, holdsEvidence);
    reviewBundles(contents, topFolders(contents.files), name, review);
    return review;
}

Review reviewImage(const QString &path, const QString &name)
{
    Review review;
    const SignedImage image(path);
    PackedFiles contents = readImageContents(path, holdsEvidence);
    if (!image.error().isEmpty())
        contents.error = image.error();
    SealedTree bundles;
    for (auto file = contents.files.begin(); file != contents.files.end(); ++file) {
        if (liesInBundle(file.key()))
            bundles.insert(file.key(), *file);
    }
    reviewBundles(contents, topFolders(bundles), name, review);
    review.sealDigests.append(image.sealDigest());
    return review;
}

/// What speaks against a package; empty if nothing does.
QString problemOf(const XarFile &package)
{
    if (!package.error().isEmpty())
        return u"The package cannot be read: "_s + package.error() + u'.';
    if (!package.isPackage())
        return u"The archive is no installer package."_s;
    if (!package.isSigned())
        return u"The package is not signed at all."_s;
    const auto signer = readCertificate(package.certificate());
    if (!signer || !signer->isValidNow || !signer->canSignPackages)
        return u"The package is not signed with a valid Developer ID Installer certificate."_s;
    if (!package.signatureFits())
        return u"The signature of the package is invalid."_s;
    const QString damaged = package.damagedFile();
    return damaged.isEmpty() ? QString() : u"The package is damaged: "_s + damaged + u'.';
}

Review reviewPackage(const QString &path, const QString &name)
{
    Review review;
    const XarFile package(path);
    const QString problem = problemOf(package);
    if (!problem.isEmpty())
        review.issues.append({name, problem});
    else
        review.sealDigests.append(package.sealDigest());
    return review;
}

} // namespace

bool canBeReviewed(const QString &path)
{
    return looksLikeZipArchive(path) || XarFile::looksLikeOne(path) || SignedImage::looksLikeOne(path);
}

Review reviewUpload(const QString &path, const QString &name)
{
    if (looksLikeZipArchive(path))
        return reviewArchive(path, name);
    return XarFile::looksLikeOne(path) ? reviewPackage(path, name) : reviewImage(path, name);
}

} // namespace toolchain
