#include "formats/zipreader.h"

#include <QCryptographicHash>
#include <QFile>

#include <archive.h>
#include <archive_entry.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

constexpr qsizetype mostKeptBytes = 64 << 20;

class ZipReader {
public:
    ZipReader(const QString &path, const std::function<bool(const QString &)> &keepsBytes)
        : m_archive(archive_read_new(), archive_read_free)
        , m_keepsBytes(keepsBytes)
    {
        archive_read_support_format_zip_seekable(m_archive.get());
        constexpr std::size_t blockSize = 1 << 18;
        if (archive_read_open_filename(m_archive.get(), QFile::encodeName(path).constData(), blockSize)
            != ARCHIVE_OK)
            m_contents.error = archiveError();
    }

    ZipContents read()
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
        SealedFile file;
        if (type == AE_IFLNK)
            file.linkTarget = QString::fromUtf8(archive_entry_symlink_utf8(entry)) + u""_s;
        else
            readBytes(path, file);
        m_contents.files.insert(path, file);
    }

    void readBytes(const QString &path, SealedFile &file)
    {
        QCryptographicHash sha1(QCryptographicHash::Sha1);
        QCryptographicHash sha256(QCryptographicHash::Sha256);
        const bool keeps = m_keepsBytes(path);
        QByteArray kept;
        ssize_t length = 0;
        while ((length = archive_read_data(m_archive.get(), m_buffer.data(), std::size_t(m_buffer.size())))
               > 0) {
            const QByteArrayView bytes(m_buffer.constData(), length);
            sha1.addData(bytes);
            sha256.addData(bytes);
            if (keeps && kept.size() + length <= mostKeptBytes)
                kept.append(bytes.data(), bytes.size());
            else if (keeps)
                m_contents.error = u"\"%1\" is too large"_s.arg(path);
        }
        if (length < 0)
            m_contents.error = archiveError();
        file.sha1 = sha1.result();
        file.sha256 = sha256.result();
        if (keeps)
            m_contents.kept.insert(path, kept);
    }

    QString archiveError()
    {
        const char *text = archive_error_string(m_archive.get());
        return text ? QString::fromUtf8(text) : u"the archive cannot be read"_s;
    }

    const std::unique_ptr<archive, decltype(&archive_read_free)> m_archive;
    const std::function<bool(const QString &)> &m_keepsBytes;
    QByteArray m_buffer = QByteArray(1 << 18, Qt::Uninitialized);
    ZipContents m_contents;
};

} // namespace

ZipContents readZipArchive(const QString &path, const std::function<bool(const QString &)> &keepsBytes)
{
    return ZipReader(path, keepsBytes).read();
}

bool looksLikeZipArchive(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(2) == "PK";
}

} // namespace toolchain
