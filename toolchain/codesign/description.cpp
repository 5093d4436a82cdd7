#include "codesign/description.h"

#include "codesign/identifiers.h"
#include "formats/bigendian.h"
#include "formats/codesignature/certificatefacts.h"
#include "formats/codesignature/requirement.h"
#include "formats/resourceseal/sealcheck.h"
#include "formats/ticket/signedticket.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;
using namespace toolchain::codesignature;

namespace toolchain::codesign {

namespace {

/// From which level on something is shown.
namespace level {
constexpr int basics = 1;
constexpr int signers = 2;
constexpr int digests = 3;
constexpr int everything = 4;
constexpr int slots = 6;
} // namespace level

QString hex(QByteArrayView bytes)
{
    return QString::fromLatin1(bytes.toByteArray().toHex());
}

QString timeText(const QDateTime &time)
{
    return QLocale::c().toString(time.toLocalTime(), u"MMM d, yyyy 'at' HH:mm:ss"_s);
}

QString runtimeText(quint32 packed)
{
    return u"%1.%2.%3"_s.arg(packed >> 16).arg(packed >> 8 & 0xff).arg(packed & 0xff);
}

class Description {
public:
    Description(const SignedCode &code, const std::optional<CmsJudgement> &signer, int wanted)
        : m_code(code)
        , m_part(code.native())
        , m_directory(m_part.best())
        , m_fields(m_directory.fields())
        , m_signer(signer)
        , m_level(wanted)
    {
    }

    QStringList lines()
    {
        m_lines.append(u"Executable="_s + QDir::current().absoluteFilePath(m_code.mainFile));
        addBasics();
        addDigests();
        addExecutableSegment();
        addSlots();
        add(level::digests, u"CDHash="_s + hex(m_directory.cdHash()));
        addSigner();
        addResources();
        return m_lines;
    }

private:
    void add(int needed, const QString &line)
    {
        if (m_level >= needed)
            m_lines.append(line);
    }

    void addBasics()
    {
        add(level::basics, u"Identifier="_s + m_fields.identifier);
        add(level::basics, u"Format="_s + m_code.formatText());
        add(level::basics,
            u"CodeDirectory v=%1 size=%2 flags=0x%3(%4) hashes=%5+%6 location=embedded"_s
                .arg(m_directory.version(), 0, 16)
                .arg(m_directory.bytes().size())
                .arg(m_fields.flags, 0, 16)
                .arg(codeFlagsText(m_fields.flags))
                .arg(m_directory.codeSlotCount())
                .arg(m_directory.specialSlotCount()));
        const MachOVersion *version =
            m_code.image ? m_code.image->slices[m_code.nativeIndex()].version() : nullptr;
        if (!version)
            return;
        add(level::everything, u"VersionPlatform=%1"_s.arg(version->platform));
        add(level::everything, u"VersionMin=%1"_s.arg(version->minimumSystem));
        add(level::everything, u"VersionSDK=%1"_s.arg(version->sdk));
    }

    void addDigests()
    {
        QStringList names;
        add(level::digests,
            u"Hash type=%1 size=%2"_s.arg(hashName(m_fields.hashType)).arg(hashSize(m_fields.hashType)));
        for (const CodeDirectory &directory : m_part.directories) {
            const QString name = hashName(directory.fields().hashType);
            names.append(name);
            add(level::digests, u"CandidateCDHash %1=%2"_s.arg(name, hex(directory.cdHash())));
            add(level::digests, u"CandidateCDHashFull %1=%2"_s.arg(name, hex(directory.digest())));
        }
        add(level::digests, u"Hash choices="_s + names.join(u','));
        const QByteArray content = digestOf(m_part.primary().bytes(), HashType::sha256);
        add(level::digests, u"CMSDigest="_s + hex(content));
        add(level::digests, u"CMSDigestType=%1"_s.arg(int(HashType::sha256)));
    }

    void addExecutableSegment()
    {
        if (m_fields.execSegmentLimit > 0) {
            add(level::everything, u"Executable Segment base=%1"_s.arg(m_fields.execSegmentBase));
            add(level::everything, u"Executable Segment limit=%1"_s.arg(m_fields.execSegmentLimit));
            add(level::everything, u"Executable Segment flags=0x%1"_s.arg(m_fields.execSegmentFlags, 0, 16));
        }
        const QString size =
            m_fields.pageShift == 0 ? u"none"_s : QString::number(quint64(1) << m_fields.pageShift);
        add(level::everything, u"Page size="_s + size);
    }

    void addSlots()
    {
        if (m_level < level::slots)
            return;
        for (quint32 number = m_directory.specialSlotCount(); number > 0; --number)
            m_lines.append(u"    -%1=%2"_s.arg(number).arg(hex(m_directory.specialSlot(number))));
        for (quint32 index = 0; index < m_directory.codeSlotCount(); ++index)
            m_lines.append(u"     %1=%2"_s.arg(index).arg(hex(m_directory.codeSlot(index))));
    }

    void addSigner()
    {
        if (!m_signer) {
            add(level::basics, u"Signature=adhoc"_s);
        } else {
            add(level::basics, u"Signature size=%1"_s.arg(m_part.cms().size()));
            for (const QByteArray &certificate : m_signer->trust.chain)
                add(level::signers, u"Authority="_s + CertificateFacts(certificate).commonName());
            if (m_signer->trust.anchor == Anchor::thisMachine)
                add(level::signers, u"Anchor=authority of this machine, which no Mac knows"_s);
            addTime();
        }
        if (isTicketStapled())
            add(level::signers, u"Notarization Ticket=stapled"_s);
    }

    void addTime()
    {
        if (m_signer->timestamp)
            add(level::signers, u"Timestamp="_s + timeText(*m_signer->timestamp));
        else if (m_signer->signingTime.isValid())
            add(level::signers, u"Signed Time="_s + timeText(m_signer->signingTime));
    }

    void addResources()
    {
        add(level::basics, infoLine());
        add(level::basics, u"TeamIdentifier="_s + (m_fields.team.isEmpty() ? u"not set"_s : m_fields.team));
        if (m_fields.runtime != 0)
            add(level::everything, u"Runtime Version="_s + runtimeText(m_fields.runtime));
        add(level::basics, sealLine());
        add(level::basics, requirementsLine());
    }

    [[nodiscard]] QString infoLine() const
    {
        const QByteArray info = boundInfoPropertyList(m_code, m_code.nativeIndex());
        if (info.isEmpty() || !m_directory.hasSpecialSlot(slot::infoPropertyList))
            return u"Info.plist=not bound"_s;
        return u"Info.plist entries=%1"_s.arg(
            platform::propertyListFromData(info).valueOr({}).toMap().size());
    }

    [[nodiscard]] QString sealLine() const
    {
        const auto bytes = m_code.bundle ? seal::readSealFile(m_code.bundle->base)
                                         : platform::Result<QByteArray>(platform::Error());
        const auto seal =
            bytes ? seal::readSeal(*bytes) : platform::Result<seal::CodeSeal>(platform::Error());
        if (!seal || !m_directory.hasSpecialSlot(slot::resources))
            return u"Sealed Resources=none"_s;
        const bool isFirst = seal->version == 1;
        return u"Sealed Resources version=%1 rules=%2 files=%3"_s.arg(seal->version)
            .arg(isFirst ? seal->rules.size() : seal->rules2.size())
            .arg(isFirst ? seal->files.size() : seal->files2.size());
    }

    [[nodiscard]] QString requirementsLine() const
    {
        const QByteArray blob = m_part.requirements();
        if (blob.isEmpty())
            return u"Internal requirements=none"_s;
        const auto set = readRequirementSet(blob);
        return u"Internal requirements count=%1 size=%2"_s.arg(set ? set->size() : 0).arg(blob.size());
    }

    [[nodiscard]] bool isTicketStapled() const
    {
        QByteArray bytes = m_part.ticket();
        QFile file(m_code.bundle ? m_code.bundle->root + u"/Contents/CodeResources"_s : QString());
        constexpr qint64 longestTicket = 16 << 20;
        if (m_code.bundle && file.open(QIODevice::ReadOnly) && file.size() <= longestTicket)
            bytes = file.readAll();
        const auto ticket = ticket::readTicket(bytes);
        return ticket && ticket->vouchesFor({quint8(m_fields.hashType), m_directory.cdHash()});
    }

    const SignedCode &m_code;
    const SignedPart &m_part;
    const CodeDirectory &m_directory;
    const CodeDirectoryFields &m_fields;
    const std::optional<CmsJudgement> &m_signer;
    int m_level;
    QStringList m_lines;
};

} // namespace

QStringList describe(const SignedCode &code, const std::optional<CmsJudgement> &signer, int wanted)
{
    return Description(code, signer, wanted).lines();
}

} // namespace toolchain::codesign
