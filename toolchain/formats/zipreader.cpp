#include "formats/zipreader.h"

#include <QFile>

#include <archive.h>
#include <archive_entry.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

class ZipReader {
public:
    ZipReader(const QString &path, const KeepsBytes &keepsBytes)
        : m_archive(archive_read_new(), archive_read_free)
        , m_keepsBytes(keepsBytes)
    {
        archive_read_support_format_zip_seekable(m_archive.get());
        constexpr std::size_t blockSize = 1 << 18;
        if (archive_read_open_filename(m_archive.get(), QFile::encodeName(path).constData(), blockSize)
            != ARCHIVE_OK)
            m_contents.error = archiveError();
    }

    PackedFiles read()
    {
        archive_entry *entry = nullptr;
        while (m_contents.error.isEmpty()) {
            const int result = archive_read_next_header(m_archive.get(), &entry);
            if (result == ARCHIVE_EOF)
                break;
            if (result == ARCHIVE_OK)
                readEntry(entry);
            else
                m_contents.error = archiveError();
        }
        return std::move(m_contents);
    }

private:
    void readEntry(archive_entry *entry)
    {
        const QString path = QString::fromUtf8(archive_entry_pathname_utf8(entry));
        const auto type = archive_entry_filetype(entry);
        if (type == AE_IFDIR)
            return;
        if (path.isEmpty() || m_contents.files.contains(path) || (type != AE_IFREG && type != AE_IFLNK)) {
            m_contents.error = u"the entry \"%1\" cannot be used"_s.arg(path);
            return;
        }
        if (type == AE_IFREG)
            return readBytes(path);
        const QString target = QString::fromUtf8(archive_entry_symlink_utf8(entry)) + u""_s;
        m_contents.files.insert(path, {{}, {}, target});
    }

    void readBytes(const QString &path)
    {
        PackedFileTaker file(m_contents, path, m_keepsBytes(path));
        ssize_t length = 0;
        while ((length = archive_read_data(m_archive.get(), m_buffer.data(), std::size_t(m_buffer.size())))
               > 0) {
            if (!file.add(QByteArrayView(m_buffer.constData(), length)))
                return;
        }
        if (length < 0)
            m_contents.error = archiveError();
        file.finish();
    }

    QString archiveError()
    {
        const char *text = archive_error_string(m_archive.get());
        return text ? QString::fromUtf8(text) : u"the archive cannot be read"_s;
    }

    const std::unique_ptr<archive, decltype(&archive_read_free)> m_archive;
    const KeepsBytes &m_keepsBytes;
    QByteArray m_buffer = QByteArray(1 << 18, Qt::Uninitialized);
    PackedFiles m_contents;
};

} // namespace

PackedFiles readZipArchive(const QString &path, const KeepsBytes &keepsBytes)
{
    return ZipReader(path, keepsBytes).read();
}

bool looksLikeZipArchive(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(2) == "PK";
}

} // namespace toolchain
