#include "formats/review/streamunpacker.h"

#include "formats/codesignature/machoimage.h"
#include "formats/zip/zipdirectory.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <archive.h>
#include <archive_entry.h>

#include <sys/stat.h>
#include <unistd.h>

#include <memory>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::review {

namespace {

/// Whether a path of an archive stays below the folder that it is unpacked into.
bool staysBelow(const QString &path)
{
    return !path.isEmpty() && !path.startsWith(u'/') && !path.split(u'/').contains(u".."_s);
}

QString withoutDotFolder(QString path)
{
    while (path.startsWith("./"_L1))
        path.remove(0, 2);
    while (path.endsWith(u'/'))
        path.chop(1);
    return path;
}

/// Where macOS's archiver keeps the attributes of a file, and where those who read attributes look for them.
QString besideItsFile(const QString &path)
{
    const QString folder = u"__MACOSX/"_s;
    return path.startsWith(folder) ? path.mid(folder.size()) : path;
}

/// The names in a zip archive byte for byte, by their composed forms. libarchive composes those that are
/// marked as UTF-8, and a seal knows a file by the name that it has.
QHash<QString, QString> namesIn(const QString &archive)
{
    QHash<QString, QString> names;
    const zip::ZipDirectory directory(archive);
    for (const zip::PackedEntry &entry : directory.entries()) {
        const QString name = QString::fromUtf8(entry.name);
        names.insert(name.normalized(QString::NormalizationForm_C), name);
    }
    return names;
}

class StreamReader {
public:
    StreamReader(const QString &path, ArchiveKind kind)
        : m_path(path)
        , m_archive(archive_read_new(), archive_read_free)
    {
        archive_read_support_filter_gzip(m_archive.get());
        archive_read_support_filter_bzip2(m_archive.get());
        archive_read_support_filter_xz(m_archive.get());
        if (kind == ArchiveKind::zip) {
            archive_read_support_format_zip(m_archive.get());
            m_names = namesIn(path);
        }
        archive_read_support_format_tar(m_archive.get());
        archive_read_support_format_cpio(m_archive.get());
        if (kind == ArchiveKind::compressed)
            archive_read_support_format_raw(m_archive.get());
        constexpr std::size_t blockSize = 1 << 18;
        m_isOpen = archive_read_open_filename(m_archive.get(), QFile::encodeName(path).constData(), blockSize)
            == ARCHIVE_OK;
    }

    [[nodiscard]] bool isOpen() const { return m_isOpen; }

    /// The next entry; null at the end, and after an error, which `error` then tells.
    archive_entry *next()
    {
        archive_entry *entry = nullptr;
        const int result = archive_read_next_header(m_archive.get(), &entry);
        if (result == ARCHIVE_EOF)
            return nullptr;
        if (result != ARCHIVE_OK && result != ARCHIVE_WARN) {
            m_hasFailed = true;
            return nullptr;
        }
        return entry;
    }

    [[nodiscard]] bool hasFailed() const { return m_hasFailed; }

    /// The entry's path without what leads to the archive's top; one compressed file is called as the archive
    /// is, without the last extension.
    [[nodiscard]] QString pathOf(archive_entry *entry) const
    {
        if (archive_format(m_archive.get()) == ARCHIVE_FORMAT_RAW)
            return QFileInfo(m_path).completeBaseName();
        const char *utf8 = archive_entry_pathname_utf8(entry);
        const QString name = QString::fromUtf8(utf8 ? utf8 : archive_entry_pathname(entry));
        return withoutDotFolder(m_names.value(name.normalized(QString::NormalizationForm_C), name));
    }

    [[nodiscard]] archive *handle() const { return m_archive.get(); }

    [[nodiscard]] Error failure() const
    {
        const char *text = archive_error_string(m_archive.get());
        return {text ? QString::fromUtf8(text).trimmed() : u"the archive cannot be read"_s};
    }

private:
    const QString m_path;
    const std::unique_ptr<archive, decltype(&archive_read_free)> m_archive;
    QHash<QString, QString> m_names;
    bool m_isOpen = false;
    bool m_hasFailed = false;
};

Error overBudget()
{
    return {u"unpacks to more than can be looked at"_s};
}

/// Lays the entries of an archive into a folder.
class Unpacker {
public:
    Unpacker(StreamReader &reader, QString folder, UnpackBudget &budget)
        : m_reader(reader)
        , m_folder(std::move(folder))
        , m_budget(budget)
    {
    }

    Result<void> run()
    {
        while (archive_entry *entry = m_reader.next()) {
            if (--m_budget.entries < 0)
                return overBudget();
            if (auto laid = lay(entry); !laid)
                return laid;
        }
        return m_reader.hasFailed() ? m_reader.failure() : Result<void>();
    }

private:
    Result<void> lay(archive_entry *entry)
    {
        const QString path = besideItsFile(m_reader.pathOf(entry));
        if (path.isEmpty() || path == "."_L1)
            return {};
        if (!staysBelow(path))
            return Error{u"\"%1\" leads out of the archive"_s.arg(path)};
        const QString place = m_folder + u'/' + path;
        if (archive_entry_filetype(entry) == AE_IFDIR)
            return makeFolder(place);
        if (auto made = makeFolder(QFileInfo(place).path()); !made)
            return made;
        if (archive_entry_hardlink(entry))
            return copyHardLink(entry, place);
        if (archive_entry_filetype(entry) == AE_IFLNK)
            return layLink(entry, place);
        if (archive_entry_filetype(entry) != AE_IFREG)
            return {};
        return layFile(entry, place);
    }

    /// A folder that an earlier entry has made a link would lead elsewhere.
    Result<void> makeFolder(const QString &place) const
    {
        QString path = m_folder;
        for (const QString &name : QDir(m_folder).relativeFilePath(place).split(u'/')) {
            path += u'/' + name;
            if (QFileInfo(path).isSymLink())
                return Error{u"\"%1\" lies behind a link"_s.arg(place.mid(m_folder.size() + 1))};
        }
        if (QDir().mkpath(place))
            return {};
        return Error{u"\"%1\" cannot be unpacked"_s.arg(place.mid(m_folder.size() + 1))};
    }

    Result<void> copyHardLink(archive_entry *entry, const QString &place) const
    {
        const QString target = withoutDotFolder(QString::fromUtf8(archive_entry_hardlink_utf8(entry)));
        if (staysBelow(target))
            QFile::copy(m_folder + u'/' + target, place);
        return {};
    }

    static Result<void> layLink(archive_entry *entry, const QString &place)
    {
        const char *target = archive_entry_symlink(entry);
        QFile::remove(place);
        if (target && symlink(target, QFile::encodeName(place).constData()) == 0)
            return {};
        return Error{u"the link \"%1\" cannot be unpacked"_s.arg(QFileInfo(place).fileName())};
    }

    Result<void> layFile(archive_entry *entry, const QString &place)
    {
        QFile::remove(place);
        QFile file(place);
        if (!file.open(QIODevice::WriteOnly))
            return Error{file.errorString()};
        ssize_t length = 0;
        while ((length = archive_read_data(m_reader.handle(), m_buffer.data(), std::size_t(m_buffer.size())))
               > 0) {
            m_budget.bytes -= length;
            if (m_budget.bytes < 0)
                return overBudget();
            if (file.write(m_buffer.constData(), length) != length)
                return Error{file.errorString()};
        }
        if (length < 0)
            return m_reader.failure();
        file.close();
        constexpr mode_t readable = 0600;
        chmod(QFile::encodeName(place).constData(), (archive_entry_mode(entry) & 0777) | readable);
        return {};
    }

    StreamReader &m_reader;
    const QString m_folder;
    UnpackBudget &m_budget;
    QByteArray m_buffer = QByteArray(1 << 18, Qt::Uninitialized);
};

bool beginsAsCodeOrArchive(QByteArrayView beginning, const QString &path)
{
    if (codesignature::looksLikeMachO(beginning) || path.endsWith(".dmg"_L1, Qt::CaseInsensitive))
        return true;
    return archiveKind(beginning, {}) != ArchiveKind::none;
}

} // namespace

Result<void> unpackStream(const QString &archive, ArchiveKind kind, const QString &folder,
                          UnpackBudget &budget)
{
    StreamReader reader(archive, kind);
    if (!reader.isOpen())
        return reader.failure();
    return Unpacker(reader, folder, budget).run();
}

Result<bool> streamMayHoldCode(const QString &archive, ArchiveKind kind, UnpackBudget &budget)
{
    StreamReader reader(archive, kind);
    if (!reader.isOpen())
        return reader.failure();
    QByteArray beginning(tellingBytes, Qt::Uninitialized);
    while (archive_entry *entry = reader.next()) {
        if (--budget.entries < 0)
            return overBudget();
        if (archive_entry_filetype(entry) != AE_IFREG)
            continue;
        const auto length =
            archive_read_data(reader.handle(), beginning.data(), std::size_t(beginning.size()));
        if (length < 0)
            return reader.failure();
        if (beginsAsCodeOrArchive(QByteArrayView(beginning).first(qsizetype(length)), reader.pathOf(entry)))
            return true;
    }
    return reader.hasFailed() ? Result<bool>(reader.failure()) : Result<bool>(false);
}

} // namespace toolchain::review
