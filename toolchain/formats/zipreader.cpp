#include "formats/zipreader.h"

#include "formats/zip/packedattributes.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

constexpr quint64 longestLink = 4096; ///< bytes, as long as this host's can be

class ZipReader {
public:
    ZipReader(zip::ZipDirectory &archive, const KeepsBytes &keepsBytes)
        : m_archive(archive)
        , m_attributes(archive)
        , m_keepsBytes(keepsBytes)
    {
    }

    PackedFiles read()
    {
        for (const zip::PackedEntry &entry : m_archive.entries()) {
            if (!m_contents.error.isEmpty())
                break;
            if (!entry.isFolder() && !m_attributes.isPartOfAnother(entry))
                readEntry(entry);
        }
        return std::move(m_contents);
    }

private:
    void readEntry(const zip::PackedEntry &entry)
    {
        const QString path = QString::fromUtf8(entry.name);
        if (m_contents.files.contains(path) || (!entry.isFile() && !entry.isLink()))
            m_contents.error = u"the entry \"%1\" cannot be used"_s.arg(path);
        else if (entry.isFile())
            readBytes(path, entry);
        else
            readLink(path, entry);
    }

    void readBytes(const QString &path, const zip::PackedEntry &entry)
    {
        PackedFileTaker file(m_contents, path, m_keepsBytes(path));
        const QString problem =
            m_archive.read(entry, [&file](QByteArrayView bytes) { return file.add(bytes); });
        if (m_contents.error.isEmpty())
            m_contents.error = problem;
        if (m_contents.error.isEmpty())
            file.finish();
    }

    void readLink(const QString &path, const zip::PackedEntry &entry)
    {
        const auto target = m_archive.bytesOf(entry, longestLink);
        if (target)
            m_contents.files.insert(path, {{}, {}, QString::fromUtf8(*target) + u""_s});
        else
            m_contents.error = target.error();
    }

    zip::ZipDirectory &m_archive;
    const zip::PackedAttributes m_attributes;
    const KeepsBytes &m_keepsBytes;
    PackedFiles m_contents;
};

} // namespace

PackedFiles readZipArchive(const QString &path, const KeepsBytes &keepsBytes)
{
    zip::ZipDirectory archive(path);
    if (!archive.error().isEmpty())
        return {{}, {}, archive.error()};
    return ZipReader(archive, keepsBytes).read();
}

bool looksLikeZipArchive(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(2) == "PK";
}

} // namespace toolchain
