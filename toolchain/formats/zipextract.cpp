#include "formats/zipextract.h"

#include "formats/appledouble.h"
#include "formats/fileattributes.h"
#include "formats/zip/packedattributes.h"
#include "support/newfile.h"

#include <QDir>
#include <QSet>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <optional>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;

namespace toolchain {

using zip::PackedEntry;

namespace {

constexpr quint64 longestLink = 4096;
constexpr quint64 longestAttributes = 256 << 20;
constexpr mode_t ordinaryRights = 0777;

/// The parts of a name; nothing for one that could lead somewhere else.
std::optional<QByteArrayList> partsOf(const QByteArray &name)
{
    QByteArrayList parts;
    if (name.startsWith('/'))
        return {};
    for (const QByteArray &part : name.split('/')) {
        if (part == "..")
            return {};
        if (!part.isEmpty() && part != ".")
            parts.append(part);
    }
    return parts;
}

/// Whether a link at `depth` folders below the top leads to something below the top, as far as names tell.
bool staysInside(const QByteArray &target, qsizetype depth)
{
    if (target.isEmpty() || target.startsWith('/') || target.contains('\0'))
        return false;
    for (const QByteArray &part : target.split('/')) {
        if (part.isEmpty() || part == ".")
            continue;
        depth += part == ".." ? -1 : 1;
        if (depth < 0)
            return false;
    }
    return true;
}

/// A descriptor that is closed at the end of its scope.
class Descriptor {
public:
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    ~Descriptor() { reset(-1); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    [[nodiscard]] int get() const { return m_number; }
    void reset(int number)
    {
        if (m_number >= 0)
            close(m_number);
        m_number = number;
    }

private:
    int m_number;
};

class Extractor {
public:
    Extractor(zip::ZipDirectory &archive, QString folder)
        : m_archive(archive)
        , m_attributes(archive)
        , m_folder(std::move(folder))
        , m_top(open(QFile::encodeName(m_folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
    }

    Outcome extract()
    {
        if (m_top.get() < 0)
            return Error{errorOf(m_folder, errno)};
        checkAll();
        // Links come after the files, so that no file can be written through one; folders get their modes and
        // times when nothing is put into them any more.
        forEach(&PackedEntry::isFolder, &Extractor::makeFolder);
        forEach(&PackedEntry::isFile, &Extractor::unpackFile);
        forEach(&PackedEntry::isLink, &Extractor::makeLink);
        for (auto folder = m_finishedLast.rbegin(); folder != m_finishedLast.rend() && m_outcome; ++folder)
            finishFolder(**folder);
        return m_outcome;
    }

private:
    void forEach(bool (PackedEntry::*isMeant)() const, void (Extractor::*action)(const PackedEntry &))
    {
        for (const PackedEntry &entry : m_archive.entries()) {
            if (!m_outcome)
                return;
            if ((entry.*isMeant)() && !m_attributes.isPartOfAnother(entry))
                (this->*action)(entry);
        }
    }

    void checkAll()
    {
        struct statvfs room = {};
        if (fstatvfs(m_top.get(), &room) == 0 && m_archive.plainSize() / room.f_frsize > room.f_bavail)
            m_outcome =
                Error{u"the archive holds %1 bytes, for which there is no room"_s.arg(m_archive.plainSize())};
        for (const PackedEntry &entry : m_archive.entries()) {
            if (!m_outcome)
                return;
            check(entry);
        }
    }

    void check(const PackedEntry &entry)
    {
        const auto parts = partsOf(entry.name);
        if (!parts || parts->isEmpty())
            return fail(entry, u"leads out of the folder"_s);
        if (!entry.isFolder() && !entry.isFile() && !entry.isLink())
            return fail(entry, u"is neither a file, a folder nor a symbolic link"_s);
        const QByteArray path = parts->join('/');
        if (m_paths.contains(path))
            return fail(entry, u"is there twice"_s);
        m_paths.insert(path);
        if (!entry.isLink())
            return;
        const auto target = m_archive.bytesOf(entry, longestLink);
        if (!target)
            m_outcome = target.failure();
        else if (!staysInside(*target, parts->size() - 1))
            fail(entry, u"is a link that leads out of the folder"_s);
    }

    /// Opens the folder of these parts, and makes those that are not there. Follows no link. False, with
    /// errno telling why, if that fails.
    bool openFolder(const QByteArrayList &parts, Descriptor &folder) const
    {
        folder.reset(fcntl(m_top.get(), F_DUPFD_CLOEXEC, 0));
        for (const QByteArray &part : parts) {
            if (folder.get() < 0)
                return false;
            if (mkdirat(folder.get(), part.constData(), S_IRWXU | S_IRWXG | S_IRWXO) != 0 && errno != EEXIST)
                return false;
            folder.reset(
                openat(folder.get(), part.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        }
        return folder.get() >= 0;
    }

    /// Opens the folder that an entry lies in.
    bool openFolderOf(QByteArrayList parts, Descriptor &folder) const
    {
        parts.removeLast();
        return openFolder(parts, folder);
    }

    void makeFolder(const PackedEntry &entry)
    {
        Descriptor folder(-1);
        struct stat status = {};
        if (!openFolder(*partsOf(entry.name), folder) || fstat(folder.get(), &status) != 0
            || fchmod(folder.get(), status.st_mode | S_IRWXU) != 0)
            return failWith(entry, errno);
        m_finishedLast.push_back(&entry);
    }

    void unpackFile(const PackedEntry &entry)
    {
        const QByteArrayList parts = *partsOf(entry.name);
        Descriptor folder(-1);
        if (!openFolderOf(parts, folder))
            return failWith(entry, errno);
        NewFile file(folder.get(), parts.last().toStdString());
        int error = file.descriptor() < 0 ? errno : 0;
        if (error == 0) {
            m_outcome = m_archive.read(entry, [&](QByteArrayView bytes) {
                error = file.write({bytes.data(), std::size_t(bytes.size())}) ? 0 : errno;
                return error == 0;
            });
        }
        if (!m_outcome)
            return;
        if (error == 0
            && !(setTimes(file.descriptor(), entry) && chmodTo(file.descriptor(), entry) && file.finish()))
            error = errno;
        if (error != 0)
            return failWith(entry, error);
        setAttributes(entry, file.descriptor());
    }

    void makeLink(const PackedEntry &entry)
    {
        const QByteArrayList parts = *partsOf(entry.name);
        const auto target = m_archive.bytesOf(entry, longestLink);
        Descriptor folder(-1);
        if (!target || !openFolderOf(parts, folder))
            return failWith(entry, target ? errno : EIO);
        struct stat status = {};
        const char *name = parts.last().constData();
        if (fstatat(folder.get(), name, &status, AT_SYMLINK_NOFOLLOW) == 0 && !S_ISDIR(status.st_mode))
            unlinkat(folder.get(), name, 0);
        const std::array times{timespec{entry.modified, 0}, timespec{entry.modified, 0}};
        if (symlinkat(target->constData(), folder.get(), name) != 0
            || utimensat(folder.get(), name, times.data(), AT_SYMLINK_NOFOLLOW) != 0)
            failWith(entry, errno);
    }

    void finishFolder(const PackedEntry &entry)
    {
        Descriptor folder(-1);
        if (!openFolder(*partsOf(entry.name), folder))
            return failWith(entry, errno);
        setAttributes(entry, folder.get());
        if (m_outcome && !(setTimes(folder.get(), entry) && chmodTo(folder.get(), entry)))
            failWith(entry, errno);
    }

    static bool setTimes(int file, const PackedEntry &entry)
    {
        const std::array times{timespec{entry.modified, 0}, timespec{entry.modified, 0}};
        return futimens(file, times.data()) == 0;
    }

    static bool chmodTo(int file, const PackedEntry &entry)
    {
        return fchmod(file, entry.mode & ordinaryRights) == 0;
    }

    /// A file that may not be written to may not be given attributes either, so that it may for as long as
    /// that takes.
    void setAttributes(const PackedEntry &entry, int file)
    {
        const PackedEntry *holder = m_attributes.attributesOf(entry);
        if (holder == nullptr)
            return;
        const auto bytes = m_archive.bytesOf(*holder, longestAttributes);
        const auto attributes = bytes ? appledouble::attributesIn(*bytes) : bytes.failure();
        if (!attributes)
            return fail(*holder, u"cannot be read: "_s + attributes.error());
        const QString path = m_folder + u'/' + QFile::decodeName(partsOf(entry.name)->join('/'));
        fchmod(file, (entry.mode & ordinaryRights) | S_IWUSR);
        for (auto attribute = attributes->begin(); attribute != attributes->end() && m_outcome; ++attribute)
            m_outcome = writeAttribute(path, attribute.key(), attribute.value());
        if (!chmodTo(file, entry) && m_outcome)
            failWith(entry, errno);
    }

    static QString errorOf(const QString &name, int error)
    {
        return name + u": "_s + QString::fromLocal8Bit(std::strerror(error));
    }

    void failWith(const PackedEntry &entry, int error)
    {
        if (m_outcome)
            m_outcome = Error{errorOf(m_folder + u'/' + QString::fromUtf8(entry.name), error)};
    }

    void fail(const PackedEntry &entry, const QString &reason)
    {
        m_outcome = Error{u"the entry \"%1\" %2"_s.arg(QString::fromUtf8(entry.name), reason)};
    }

    zip::ZipDirectory &m_archive;
    const zip::PackedAttributes m_attributes;
    const QString m_folder;
    const Descriptor m_top;
    QSet<QByteArray> m_paths;
    std::vector<const PackedEntry *> m_finishedLast;
    platform::Outcome m_outcome;
};

} // namespace

Outcome extractZipArchive(const QString &archive, const QString &folder)
{
    zip::ZipDirectory directory(archive);
    if (!directory.outcome())
        return Error{archive + u": "_s + directory.outcome().error()};
    if (!QDir().mkpath(folder))
        return Error{folder + u": cannot be made"_s};
    const Outcome extracted = Extractor(directory, folder).extract();
    return extracted ? extracted : Error{archive + u": "_s + extracted.error()};
}

} // namespace toolchain
