#include "formats/codesignature/partcheck.h"

#include "formats/codesignature/entitlementsder.h"
#include "formats/codesignature/filebytes.h"
#include "formats/codesignature/pagedigests.h"
#include "formats/udif/imagesignature.h"
#include "support/openfile.h"

#include <QFile>
#include <QFileInfo>

#include <atomic>

using namespace Qt::StringLiterals;

namespace toolchain::codesignature {

namespace {

constexpr qint64 longestComponent = 256 << 20;
constexpr quint32 mostSpecialSlots = 64;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    const bool isUsable = QFileInfo(path).isFile() && !QFileInfo(path).isSymLink()
        && file.open(QIODevice::ReadOnly) && file.size() <= longestComponent;
    const QByteArray content = isUsable ? file.readAll() : QByteArray();
    return isUsable && content.isNull() ? QByteArray("") : content;
}

class PartCheck {
public:
    PartCheck(const SignedCode &code, qsizetype part, const VerificationOrder &order)
        : m_code(code)
        , m_part(code.parts[part])
        , m_slice(code.image ? &code.image->slices[part] : nullptr)
        , m_order(order)
    {
    }

    CodeProblem check(std::optional<CmsJudgement> &signer)
    {
        CodeProblem problem = checkDirectories();
        if (problem.isNone())
            problem = checkSigner(signer);
        for (quint32 number = 1; problem.isNone() && number <= highestSlot(); ++number)
            problem = checkSlot(number);
        if (problem.isNone())
            problem = checkResourcesAreSealed();
        if (problem.isNone())
            problem = checkPages();
        if (problem.isNone() && m_order.strictness == Strictness::strict)
            problem = checkStrictly();
        return problem;
    }

private:
    static CodeProblem trouble(const QString &text, const QString &detail = {})
    {
        CodeProblem problem;
        problem.text = text;
        problem.detail = detail;
        return problem;
    }

    CodeProblem checkDirectories()
    {
        if (!m_part.damage.isEmpty())
            return trouble(text::badFormat, m_part.damage);
        if (!m_part.isSigned())
            return trouble(text::notSigned);
        m_codeLength = codeLength();
        for (const CodeDirectory &directory : m_part.directories) {
            const CodeDirectoryFields &fields = directory.fields();
            if (fields.codeLimit > m_codeLength)
                return trouble(text::invalidSignature, u"a code directory covers more than there is"_s);
            if (directory.codeSlotCount() != fields.codeSlotCount())
                return trouble(text::invalidSignature,
                               u"a code directory has not as many pages as the code"_s);
            if (directory.specialSlotCount() > mostSpecialSlots)
                return trouble(text::badFormat, u"a code directory has too many special slots"_s);
        }
        return {};
    }

    [[nodiscard]] quint64 codeLength() const
    {
        if (m_slice)
            return m_slice->codeLength();
        const auto size = quint64(QFileInfo(m_code.mainFile).size());
        const auto place = m_code.kind == CodeKind::diskImage
            ? udif::readSignaturePlace(m_code.mainFile)
            : platform::Result<udif::SignaturePlace>(platform::Error());
        return place ? place->contentLength : size;
    }

    CodeProblem checkSigner(std::optional<CmsJudgement> &signer)
    {
        const bool isAdHoc = (m_part.primary().fields().flags & codeflag::adhoc) != 0;
        if (m_part.cms().isEmpty())
            return isAdHoc ? CodeProblem() : trouble(text::invalidSignature, u"it has no CMS signature"_s);
        signer = judgePart(m_part, m_order.store);
        if (!signer->problem.isEmpty())
            return trouble(text::invalidSignature, signer->problem);
        // Whoever made a certificate of his own may have had it stamped by an authority of his own.
        if (!signer->timestampProblem.isEmpty() && signer->trust.anchor != Anchor::other)
            return trouble(text::invalidSignature, signer->timestampProblem);
        const TrustProblem doubt = signer->trust.problem;
        const bool isBroken = doubt == TrustProblem::broken || doubt == TrustProblem::noCertificate
            || doubt == TrustProblem::wrongPurpose;
        return isBroken ? trouble(u"CSSMERR_TP_NOT_TRUSTED"_s, signer->trust.text()) : CodeProblem();
    }

    [[nodiscard]] quint32 highestSlot() const
    {
        quint32 highest = slot::entitlementsDer;
        for (const CodeDirectory &directory : m_part.directories)
            highest = std::max(highest, directory.specialSlotCount());
        return highest;
    }

    /// All directories have to agree on what a slot stands for, and on whether it stands for anything.
    CodeProblem checkSlot(quint32 number)
    {
        const bool isBlob = !m_part.blobs.blob(number).isNull();
        bool isUsed = isBlob;
        for (const CodeDirectory &directory : m_part.directories)
            isUsed = isUsed || directory.hasSpecialSlot(number);
        if (!isUsed)
            return {};
        const QByteArray component = componentOf(number);
        if (component.isNull())
            return trouble(number == slot::resources ? text::noResources : problemOf(number),
                           u"what slot %1 stands for is missing"_s.arg(number));
        for (const CodeDirectory &directory : m_part.directories) {
            if (digestOf(component, directory.fields().hashType) != directory.specialSlot(number))
                return trouble(problemOf(number), u"slot %1 does not fit"_s.arg(number));
        }
        return {};
    }

    static QString problemOf(quint32 number)
    {
        if (number == slot::infoPropertyList)
            return text::badInfo;
        return number == slot::resources ? text::badResourceFolder : text::invalidSignature;
    }

    /// Null if it is missing.
    [[nodiscard]] QByteArray componentOf(quint32 number) const
    {
        switch (number) {
        case slot::infoPropertyList:
            return infoPropertyList();
        case slot::resources:
            return m_code.bundle ? contentOf(m_code.bundle->sealPath()) : QByteArray();
        case slot::imageTrailer:
            return imageTrailer();
        default:
            return m_part.blobs.blob(number);
        }
    }

    [[nodiscard]] QByteArray infoPropertyList() const
    {
        if (m_code.bundle)
            return contentOf(m_code.bundle->infoPath);
        QFile file(m_code.mainFile);
        if (!m_slice || !m_slice->infoPropertyList || !file.open(QIODevice::ReadOnly))
            return {};
        return bytesAt(file, m_slice->place.offset + m_slice->infoPropertyList->offset,
                       m_slice->infoPropertyList->length);
    }

    [[nodiscard]] QByteArray imageTrailer() const
    {
        const auto place = udif::readSignaturePlace(m_code.mainFile);
        return place && m_code.kind == CodeKind::diskImage ? place->trailerToDigest() : QByteArray();
    }

    CodeProblem checkResourcesAreSealed()
    {
        const bool hasSeal = m_part.best().hasSpecialSlot(slot::resources);
        return m_code.bundle && !hasSeal ? trouble(text::noResources) : CodeProblem();
    }

    /// Directories may differ in their pages; each is held against the code by itself.
    CodeProblem checkPages()
    {
        QList<const CodeDirectory *> rest;
        for (const CodeDirectory &directory : m_part.directories)
            rest.append(&directory);
        while (!rest.isEmpty()) {
            QList<const CodeDirectory *> alike;
            for (const CodeDirectory *directory : std::as_const(rest)) {
                if (directory->fields().pageShift == rest.first()->fields().pageShift
                    && directory->fields().codeLimit == rest.first()->fields().codeLimit)
                    alike.append(directory);
            }
            rest.removeIf([&alike](const CodeDirectory *directory) { return alike.contains(directory); });
            if (!pagesFit(alike))
                return trouble(text::invalidSignature, u"the code is not the one that was signed"_s);
        }
        return {};
    }

    [[nodiscard]] bool pagesFit(const QList<const CodeDirectory *> &directories) const
    {
        const OpenFile file(QFile::encodeName(m_code.mainFile).toStdString());
        const quint64 start = m_slice ? m_slice->place.offset : 0;
        QList<HashType> kinds;
        for (const CodeDirectory *directory : directories)
            kinds.append(directory->fields().hashType);
        std::atomic<bool> fits = true;
        const CodeReader reader = [&file, start](quint64 offset, char *buffer, quint64 length) {
            return readAt(file.descriptor(), buffer, length, start + offset);
        };
        const PageSink sink = [&directories, &fits](const PageRun &run) {
            for (qsizetype index = 0; index < run.digests.size(); ++index)
                fits = fits && runFits(*directories[index], run, run.digests[index]);
            return bool(fits);
        };
        const CodeDirectoryFields &fields = directories.first()->fields();
        return file.descriptor() >= 0 && digestPages(fields.codeLimit, fields.pageShift, kinds, reader, sink)
            && fits;
    }

    static bool runFits(const CodeDirectory &directory, const PageRun &run, const QByteArray &digests)
    {
        const qsizetype size = hashSize(directory.fields().hashType);
        for (qsizetype page = 0; page * size < digests.size(); ++page) {
            if (QByteArrayView(digests).sliced(page * size, size)
                != directory.codeSlot(quint32(run.firstPage) + quint32(page)))
                return false;
        }
        return true;
    }

    /// Bytes behind the signature, or behind the last slice, are covered by nothing.
    [[nodiscard]] bool hasTrailer() const
    {
        const bool endsSlice =
            !m_slice || !m_slice->signature || m_slice->signature->data.end() == m_slice->place.length;
        return !endsSlice || (m_code.image && m_code.image->hasMoreBehindSlices());
    }

    CodeProblem checkStrictly()
    {
        if (hasTrailer())
            return trouble(text::strictExecutable, u"there is more behind the signature"_s);
        for (const CodeDirectory &directory : m_part.directories) {
            if (directory.fields().codeLimit != m_codeLength)
                return trouble(text::strictExecutable, u"the signature does not cover all of the code"_s);
        }
        const QByteArray xml = m_part.entitlements();
        const QByteArray der = blobContent(m_part.blobs.blob(slot::entitlementsDer)).toByteArray();
        if (xml.isEmpty() || der.isEmpty())
            return {};
        const auto fromXml = readEntitlements(xml);
        const auto fromDer = entitlementsFromDer(der);
        return fromXml && fromDer && *fromXml == *fromDer ? CodeProblem() : trouble(text::badEntitlements);
    }

    const SignedCode &m_code;
    const SignedPart &m_part;
    const MachOSlice *m_slice;
    const VerificationOrder &m_order;
    quint64 m_codeLength = 0;
};

} // namespace

CodeProblem checkPart(const SignedCode &code, qsizetype part, const VerificationOrder &order,
                      std::optional<CmsJudgement> &signer)
{
    CodeProblem problem = PartCheck(code, part, order).check(signer);
    const bool isSignedAnywhere =
        std::any_of(code.parts.begin(), code.parts.end(),
                    [](const SignedPart &other) { return other.isSigned() || !other.damage.isEmpty(); });
    if (!problem.isNone() && code.image && code.image->isUniversal && isSignedAnywhere)
        problem.architecture = code.parts[part].architecture;
    return problem;
}

} // namespace toolchain::codesignature
