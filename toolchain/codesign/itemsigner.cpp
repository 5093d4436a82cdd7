#include "codesign/itemsigner.h"

#include "codesign/itemplan.h"
#include "formats/codesignature/bundleroot.h"
#include "formats/codesignature/designation.h"
#include "formats/codesignature/detritus.h"
#include "formats/codesignature/filesigner.h"
#include "formats/codesignature/machosigner.h"
#include "formats/codesignature/sealedbundle.h"
#include "formats/resourceseal/bundleseal.h"
#include "formats/udif/imagesignature.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

using namespace Qt::StringLiterals;
using namespace toolchain::codesignature;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain::codesign {

namespace {

seal::Digests sealDigests(const QList<HashType> &digests)
{
    const bool hasSha1 = digests.contains(HashType::sha1);
    if (digests.size() == 1 && hasSha1)
        return seal::Digests::sha1;
    return hasSha1 ? seal::Digests::sha1AndSha256 : seal::Digests::sha256;
}

QList<QByteArray> digestsOf(const seal::MadeSeal &seal, const QList<HashType> &kinds)
{
    std::vector<Digest> digests;
    for (const HashType kind : kinds)
        digests.emplace_back(kind);
    (void)seal.write([&digests](QByteArrayView bytes) {
        for (Digest &digest : digests)
            digest.add(bytes);
        return true;
    });
    QList<QByteArray> results;
    for (Digest &digest : digests)
        results.append(digest.result());
    return results;
}

/// A symbolic link in the seal's place, or in that of its folder, is not followed out of the bundle.
Outcome writeSeal(const CodeBundle &bundle, const seal::MadeSeal &seal)
{
    if (QFileInfo(bundle.sealFolder()).isSymLink())
        return Error{text::badLink};
    if (!QDir().mkpath(bundle.sealFolder()))
        return Error{bundle.sealFolder() + u": cannot be made"_s};
    if (QFileInfo(bundle.sealPath()).isSymLink())
        QFile::remove(bundle.sealPath());
    QSaveFile file(bundle.sealPath());
    const seal::SealSink sink = [&file](QByteArrayView bytes) {
        return file.write(bytes.data(), bytes.size()) == bytes.size();
    };
    const bool isWritten = file.open(QIODevice::WriteOnly) && seal.write(sink) && file.commit();
    return isWritten ? Outcome::success() : Error{bundle.sealPath() + u": "_s + file.errorString()};
}

bool isOfSignature(const QString &name)
{
    for (const quint32 number : {slot::codeDirectory, slot::requirements, slot::entitlements,
                                 slot::entitlementsDer, slot::firstAlternateDirectory, slot::cms}) {
        if (name == slotFileName(number))
            return true;
    }
    return name == slotFileName(slot::resources);
}

/// What older signatures have left in the seal's folder must not be taken for a part of the new one.
void tidySealFolder(const CodeBundle &bundle, bool holdsSignature)
{
    const auto entries = QDir(bundle.sealFolder()).entryInfoList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QFileInfo &entry : entries) {
        const bool stays = entry.fileName() == slotFileName(slot::resources)
            || (holdsSignature && isOfSignature(entry.fileName()));
        if (!stays)
            QFile::remove(entry.filePath());
    }
}

class ItemSigner {
public:
    ItemSigner(SignedCode code, const SigningOrder &order)
        : m_code(std::move(code))
        , m_order(order)
    {
    }

    SigningReport sign()
    {
        SigningReport report;
        if (isSignedAlready()) {
            if (m_order.oldSignature == OldSignature::isRefused)
                return {Error{u"is already signed"_s}, {}, {}};
            report.notice = u"replacing existing signature"_s;
        }
        m_item.identifier = chosenIdentifier(m_code, m_order);
        m_item.digests = digestsFor(m_code, m_order);
        for (const auto step : {&ItemSigner::checkRoot, &ItemSigner::signNested, &ItemSigner::makeSeal,
                                &ItemSigner::makePlans, &ItemSigner::write}) {
            report.outcome = (this->*step)();
            if (!report.outcome)
                return report;
        }
        report.done = u"signed %1 [%2]"_s.arg(m_code.formatText(), m_item.identifier);
        return report;
    }

private:
    [[nodiscard]] bool isSignedAlready() const
    {
        return std::any_of(m_code.parts.begin(), m_code.parts.end(), [](const SignedPart &part) {
            return (part.isSigned() || !part.damage.isEmpty()) && !part.isLinkerSigned();
        });
    }

    /// No Mac takes code with something beside what its seal covers, so it is not worth a signature.
    Outcome checkRoot()
    {
        const QString problem = m_code.bundle ? unsealedRootOf(*m_code.bundle) : QString();
        return problem.isEmpty() ? Outcome::success() : Error{problem};
    }

    Outcome signNested()
    {
        if (!m_code.bundle)
            return {};
        // Left by a run that was ended, it would count as code that is not signed.
        QFile::remove(m_code.mainFile + u".cstemp"_s);
        if (m_order.nested == NestedCode::mustBeSigned)
            return {};
        const auto nested = seal::nestedCodeIn(sealedFolder(*m_code.bundle));
        if (!nested)
            return nested.failure();
        for (const QString &path : *nested) {
            const Outcome isSigned = signOneNested(path);
            if (!isSigned)
                return Error{isSigned.error() + u"\nIn subcomponent: "_s + path};
        }
        return {};
    }

    Outcome signOneNested(const QString &path)
    {
        auto code = readSignedCode(path, SignatureDepth::heads);
        if (!code)
            return code.failure();
        ItemSigner signer(*std::move(code), m_order);
        const bool isLeft = signer.isSignedAlready() && m_order.oldSignature == OldSignature::isRefused;
        return isLeft ? Outcome::success() : signer.sign().outcome;
    }

    Outcome makeSeal()
    {
        if (!m_code.bundle)
            return {};
        const seal::DescribeNested describe = [](const QString &path) -> Result<seal::NestedCode> {
            const auto designation = designationOf(path);
            if (!designation)
                return designation.failure();
            return seal::NestedCode{designation->cdHash, designation->requirement};
        };
        auto seal = seal::collectSeal(sealedFolder(*m_code.bundle), sealDigests(m_item.digests), describe);
        if (!seal)
            return seal.failure();
        m_seal = *std::move(seal);
        m_item.sealDigests = digestsOf(*m_seal, m_item.digests);
        return {};
    }

    Outcome makePlans()
    {
        for (qsizetype part = 0; part < m_code.parts.size(); ++part) {
            auto plan = planFor(m_code, part, m_order, m_item);
            if (!plan)
                return plan.failure();
            m_plans.append(*std::move(plan));
        }
        return {};
    }

    Outcome write()
    {
        if (m_code.kind == CodeKind::diskImage)
            return signDiskImage(m_code.mainFile, m_plans.first());
        if (!m_code.bundle)
            return m_code.image ? signMachO(m_code.mainFile, m_plans)
                                : signByAttributes(m_code.mainFile, m_plans.first());
        const Outcome written = writeBundle(*m_code.bundle);
        if (written)
            tidySealFolder(*m_code.bundle, !m_code.image);
        return written;
    }

    Outcome writeBundle(const CodeBundle &bundle)
    {
        if (m_code.image)
            return signMachO(m_code.mainFile, m_plans,
                             [this, &bundle] { return writeSeal(bundle, *m_seal); });
        const Outcome written = writeSeal(bundle, *m_seal);
        return written ? signBesideSeal(m_code.mainFile, bundle.sealFolder(), m_plans.first()) : written;
    }

    SignedCode m_code;
    const SigningOrder &m_order;
    ItemPlan m_item;
    std::optional<seal::MadeSeal> m_seal; ///< of a bundle
    QList<SignaturePlan> m_plans;
};

/// A link to a file stands for the file, which is replaced; a folder may be reached by one.
QString targetOf(const QString &path)
{
    const QFileInfo item(path);
    return item.isSymLink() && item.isFile() ? item.canonicalFilePath() : path;
}

Outcome removeFromBundle(const SignedCode &code)
{
    const Outcome stripped = code.image ? stripMachO(code.mainFile) : Outcome::success();
    if (!stripped)
        return stripped;
    for (const quint32 number : {slot::codeDirectory, slot::requirements, slot::resources, slot::entitlements,
                                 slot::entitlementsDer, slot::firstAlternateDirectory, slot::cms})
        QFile::remove(code.bundle->sealFolder() + u'/' + slotFileName(number));
    QDir().rmdir(code.bundle->sealFolder());
    return {};
}

} // namespace

SigningReport signItem(const QString &path, const SigningOrder &order)
{
    // Messages about what is nested name it from the root on, wherever the tool was started.
    const QString absolute = QDir::cleanPath(QDir::current().absoluteFilePath(path));
    auto code = readSignedCode(targetOf(absolute), SignatureDepth::heads);
    if (!code)
        return {code.failure(), {}, {}};
    if (!code->bundle)
        code->path = absolute;
    const QString detritus = code->bundle || code->image ? detritusIn(code->path) : QString();
    if (!detritus.isEmpty())
        return {Error{text::detritus + u"\nIn detail: "_s + detritusDetail(detritus)}, {}, {}};
    return ItemSigner(*std::move(code), order).sign();
}

Outcome removeSignature(const QString &path)
{
    const auto code = readSignedCode(targetOf(path), SignatureDepth::heads);
    if (!code)
        return code.failure();
    if (code->bundle)
        return removeFromBundle(*code);
    if (code->kind == CodeKind::diskImage)
        return udif::replaceImageSignature(code->mainFile, {});
    return code->image ? stripMachO(code->mainFile) : removeAttributesOfSignature(code->mainFile);
}

} // namespace toolchain::codesign
