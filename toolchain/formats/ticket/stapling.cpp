#include "formats/ticket/stapling.h"

#include "formats/codesignature/filesigner.h"
#include "formats/codesignature/signaturereader.h"
#include "formats/failures.h"
#include "formats/udif/imagesignature.h"
#include "formats/xar/archive.h"
#include "support/openfile.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

using namespace Qt::StringLiterals;
namespace cs = toolchain::codesignature;

namespace toolchain::ticket {

namespace {

constexpr qint64 largestTicket = 16 << 20; // bytes
constexpr qsizetype hashSize = 20;

TicketEntry entryOf(const cs::CodeDirectory &directory)
{
    const bool isSha1 = directory.fields().hashType == cs::HashType::sha1;
    return {quint8(isSha1 ? 1 : 2), directory.cdHash()};
}

/// Of every slice the best digest, this machine's own slice first.
QList<TicketEntry> entriesOf(const cs::SignedCode &code)
{
    QList<TicketEntry> entries;
    if (code.isSigned())
        entries.append(entryOf(code.native().best()));
    for (const cs::SignedPart &part : code.parts) {
        if (part.isSigned() && !entries.contains(entryOf(part.best())))
            entries.append(entryOf(part.best()));
    }
    return entries;
}

class StapledBundle : public StapleTarget {
public:
    explicit StapledBundle(cs::SignedCode code)
        : m_code(std::move(code))
    {
    }

    QList<TicketEntry> entries() const override { return entriesOf(m_code); }

    QByteArray ticket() const override
    {
        const OpenFile file(QFile::encodeName(ticketPath()).toStdString());
        struct stat information { };
        QFile reader;
        const bool isFile = file.descriptor() >= 0 && fstat(file.descriptor(), &information) == 0
            && S_ISREG(information.st_mode) && information.st_size <= largestTicket;
        return isFile && reader.open(file.descriptor(), QIODevice::ReadOnly) ? reader.read(largestTicket)
                                                                             : QByteArray();
    }

    platform::Outcome attach(const QByteArray &ticket) const override
    {
        return writeFileAt(QFile::encodeName(ticketPath()).toStdString(), ticket);
    }

private:
    QString ticketPath() const { return m_code.bundle->base + u"/CodeResources"_s; }

    const cs::SignedCode m_code;
};

class StapledImage : public StapleTarget {
public:
    StapledImage(cs::SignedCode code, cs::SuperBlob signature, QList<TicketEntry> entries)
        : m_code(std::move(code))
        , m_signature(std::move(signature))
        , m_entries(std::move(entries))
    {
    }

    QList<TicketEntry> entries() const override { return m_entries; }
    QByteArray ticket() const override { return m_code.isSigned() ? m_code.native().ticket() : QByteArray(); }

    platform::Outcome attach(const QByteArray &ticket) const override
    {
        cs::SuperBlob blobs = m_signature;
        blobs.set(cs::slot::ticket, cs::makeBlob(cs::magic::wrapper, ticket));
        return udif::replaceImageSignature(m_code.path, blobs.bytes());
    }

private:
    const cs::SignedCode m_code;
    const cs::SuperBlob m_signature; ///< of an unsigned image, the one that it gets with its ticket
    const QList<TicketEntry> m_entries;
};

class StapledPackage : public StapleTarget {
public:
    explicit StapledPackage(xar::Archive archive)
        : m_archive(std::move(archive))
    {
    }

    /// Whatever the checksum's kind, tickets have its first 20 bytes as type 1.
    QList<TicketEntry> entries() const override
    {
        if (!m_archive.toc().signature && !m_archive.toc().secondSignature)
            return {};
        return {{1, m_archive.checksum().first(hashSize)}};
    }
    QByteArray ticket() const override { return m_archive.ticket(); }
    platform::Outcome attach(const QByteArray &ticket) const override
    {
        return m_archive.attachTicket(ticket);
    }

private:
    const xar::Archive m_archive;
};

using OpenTarget = platform::Result<std::shared_ptr<const StapleTarget>>;

OpenTarget openBundle(const QString &path)
{
    const auto code = cs::readSignedCode(path);
    if (!code)
        return code.failure();
    if (!code->bundle || code->bundle->layout != cs::BundleLayout::contents)
        return platform::Error{u"a ticket can be attached to a bundle with a Contents folder only"_s};
    return std::shared_ptr<const StapleTarget>(std::make_shared<StapledBundle>(*code));
}

OpenTarget openPackage(const QString &path)
{
    const auto archive = xar::Archive::open(path);
    if (!archive)
        return archive.failure();
    if (!archive->isPackage())
        return platform::Error{u"an archive that is no installer package"_s};
    return std::shared_ptr<const StapleTarget>(std::make_shared<StapledPackage>(*archive));
}

OpenTarget openUnsignedImage(const cs::SignedCode &code)
{
    const auto implied = cs::impliedSignatureOfImage(code.path);
    if (!implied)
        return implied.failure();
    const auto directory = cs::CodeDirectory::parse(implied->blob(cs::slot::codeDirectory));
    if (!directory)
        return directory.failure();
    return std::shared_ptr<const StapleTarget>(
        std::make_shared<StapledImage>(code, *implied, QList<TicketEntry>{entryOf(*directory)}));
}

OpenTarget openImage(const QString &path)
{
    const auto code = cs::readSignedCode(path);
    if (!code)
        return code.failure();
    if (code->isSigned())
        return std::shared_ptr<const StapleTarget>(
            std::make_shared<StapledImage>(*code, code->native().blobs, entriesOf(*code)));
    return openUnsignedImage(*code);
}

} // namespace

platform::Result<std::shared_ptr<const StapleTarget>> StapleTarget::open(const QString &path)
{
    const QFileInfo item(path);
    if (!item.exists())
        return platform::Error{u"No such file or directory"_s};
    if (item.isDir())
        return openBundle(path);
    if (item.isFile() && xar::Archive::looksLikeOne(path))
        return openPackage(path);
    if (item.isFile() && udif::endsAsDiskImage(path))
        return openImage(path);
    return platform::Error{u"not a bundle, a disk image or a package that a ticket can be attached to"_s};
}

bool StapleTarget::isNamedBy(const SignedTicket &ticket) const
{
    const QList<TicketEntry> all = entries();
    return std::any_of(all.begin(), all.end(),
                       [&](const TicketEntry &entry) { return ticket.vouchesFor(entry); });
}

} // namespace toolchain::ticket
