#include "codesign/signing.h"

#include "formats/machofile.h"
#include "formats/signedimage.h"
#include "formats/statefolder.h"
#include "support/wholefile.h"

#include <QDir>
#include <QFileInfo>

#include <filesystem>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

/// "Mach-O universal (x86_64 arm64)", or "generic" for a script and for a bundle without code.
QString codeDescription(const Bundle &bundle)
{
    const auto file =
        bundle.executable.isEmpty() ? std::nullopt : readMachOFile(bundle.executablePath().toStdString());
    return file ? QString::fromStdString(file->description()) : u"generic"_s;
}

QString writeSeal(const Bundle &bundle, const QByteArray &seal)
{
    std::error_code error;
    std::filesystem::create_directories(bundle.sealFolder().toStdString(), error);
    if (error)
        return bundle.sealFolder() + u": "_s + QString::fromStdString(error.message());
    return QString::fromStdString(writeWholeFile(bundle.sealPath().toStdString(), seal.toStdString()));
}

SigningResult sealBundle(const Bundle &bundle, const SigningOptions &options)
{
    if (QFileInfo::exists(bundle.sealPath()) && !options.replacesSeals)
        return {u"is already signed"_s, {}};
    const auto files = readSealedTree(bundle.base);
    if (!files.error.isEmpty())
        return {files.error, {}};
    const auto seal = makeSeal(files.tree, bundle.executable, options.digests);
    if (!seal.error.isEmpty())
        return {seal.error, {}};
    const QString problem = writeSeal(bundle, seal.data);
    if (!problem.isEmpty())
        return {problem, {}};
    return {{}, u"signed bundle with %1 [%2]"_s.arg(codeDescription(bundle), bundle.identifier)};
}

/// A framework with versions is sealed version by version, never as a whole.
bool isNestedBundle(const QFileInfo &folder)
{
    const bool isVersion = folder.dir().dirName() == u"Versions"_s;
    const bool hasVersions = QFileInfo::exists(folder.filePath() + u"/Versions"_s);
    return (isVersion || !folder.suffix().isEmpty()) && !hasVersions
        && readBundle(folder.filePath()).has_value();
}

/// Seals every bundle below a folder, the innermost ones first. What is sealed already is left as it is,
/// unless seals are to be replaced.
QString sealNestedBundles(const QString &folder, const SigningOptions &options)
{
    const auto entries = QDir(folder).entryInfoList(
        QDir::Dirs | QDir::NoSymLinks | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &entry : entries) {
        QString problem = sealNestedBundles(entry.filePath(), options);
        if (problem.isEmpty() && isNestedBundle(entry)) {
            const Bundle bundle = *readBundle(entry.filePath());
            const bool isLeftAlone = QFileInfo::exists(bundle.sealPath()) && !options.replacesSeals;
            problem = isLeftAlone ? QString() : sealBundle(bundle, options).error;
        }
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

SigningResult signImage(const QString &path, const SigningOptions &options)
{
    const SignedImage image(path);
    if (!image.error().isEmpty())
        return {image.error(), {}};
    const bool isSigned = image.hasForeignSignature() || !image.note().signature.bytes.isEmpty();
    if (isSigned && !options.replacesSeals)
        return {u"is already signed"_s, {}};
    const DigestSignature signature = DigestSigner(keychainFolder(), options.certificateSha1)
                                          .sign(image.digest(), QCryptographicHash::Sha256);
    if (signature.bytes.isEmpty())
        return {u"the identity's key cannot sign"_s, {}};
    const QString problem = image.write({signature, {}});
    return {problem, problem.isEmpty() ? u"signed disk image"_s : QString()};
}

SigningResult signFile(const QString &path, const SigningOptions &options)
{
    if (readMachOFile(path.toStdString()))
        return {{}, u"checked; this edition writes no signature into Mach-O files"_s};
    if (SignedImage::looksLikeOne(path))
        return signImage(path, options);
    return {u"bundle format unrecognized, invalid, or unsuitable"_s, {}};
}

} // namespace

SigningResult signItem(const QString &path, const SigningOptions &options)
{
    const QFileInfo item(path);
    if (!item.exists())
        return {u"No such file or directory"_s, {}};
    if (item.isFile())
        return signFile(path, options);
    const auto bundle = readBundle(path);
    if (!bundle)
        return {u"bundle format unrecognized, invalid, or unsuitable"_s, {}};
    if (options.sealsNestedBundles) {
        const QString problem = sealNestedBundles(bundle->base, options);
        if (!problem.isEmpty())
            return {problem, {}};
    }
    return sealBundle(*bundle, options);
}

} // namespace toolchain
