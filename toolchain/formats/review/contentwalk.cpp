#include "formats/review/contentwalk.h"

#include "formats/codesignature/machoimage.h"
#include "formats/udif/imagesignature.h"

#include <QFile>
#include <QFileInfo>
#include <QStringBuilder>
#include <QTemporaryDir>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <memory>

using namespace Qt::StringLiterals;

namespace toolchain::review {

namespace {

struct stat statusOf(int descriptor)
{
    struct stat status = {};
    if (fstat(descriptor, &status) != 0)
        status = {};
    return status;
}

} // namespace

mode_t WalkFile::mode() const
{
    return statusOf(descriptor).st_mode;
}

qint64 WalkFile::size() const
{
    return statusOf(descriptor).st_size;
}

QString tooLongText(qsizetype length)
{
    return u"The path has %1 bytes; macOS takes %2."_s.arg(length).arg(longestPath);
}

void WalkVisitor::folder(const WalkPlace &, const QStringList &) { }
void WalkVisitor::script(const WalkFile &) { }
void WalkVisitor::file(const WalkFile &) { }
void WalkVisitor::link(const WalkPlace &, const QString &) { }
void WalkVisitor::special(const WalkPlace &) { }
void WalkVisitor::unreadable(const WalkPlace &, const QString &) { }
void WalkVisitor::enterArchive(const WalkFile &) { }
void WalkVisitor::leaveArchive(const WalkFile &) { }
void WalkVisitor::tooDeep(const WalkFile &) { }
void WalkVisitor::damagedArchive(const WalkFile &, const QString &) { }

namespace {

QString systemText(int error)
{
    return QString::fromLocal8Bit(strerror(error));
}

/// Opens without a trace where the file is this user's.
int openQuietly(int folder, const char *name, int flags)
{
    const int always = O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | flags;
    const int quiet = openat(folder, name, always | O_NOATIME);
    return quiet >= 0 || errno != EPERM ? quiet : openat(folder, name, always);
}

class Descriptor {
public:
    explicit Descriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    [[nodiscard]] int number() const { return m_descriptor; }
    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }

private:
    const int m_descriptor;
};

struct Name {
    QByteArray bytes;
    unsigned char type = DT_UNKNOWN;
};

QList<Name> namesIn(int folder)
{
    QList<Name> names;
    DIR *stream = fdopendir(dup(folder));
    if (!stream)
        return names;
    while (const dirent *entry = readdir(stream)) {
        if (strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0)
            names.append({entry->d_name, entry->d_type});
    }
    closedir(stream);
    std::sort(names.begin(), names.end(), [](const Name &a, const Name &b) { return a.bytes < b.bytes; });
    return names;
}

unsigned char typeOf(int folder, const Name &name)
{
    if (name.type != DT_UNKNOWN)
        return name.type;
    struct stat status = {};
    return fstatat(folder, name.bytes.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0
        ? (unsigned char)(IFTODT(status.st_mode))
        : name.type;
}

WalkPlace below(const WalkPlace &place, const QString &name)
{
    // with one allocation each: there may be a hundred thousand
    return {place.path == "."_L1 ? name : QString(place.path % u'/' % name), place.file % u'/' % name,
            place.archiveDepth};
}

/// What tells a Mach-O file, a script or an archive stands at the very beginning; what an AppleDouble file
/// holds may stand further on.
std::size_t tellingBytesOf(const WalkPlace &place)
{
    constexpr qint64 headOfTar = 512;
    const bool isAppleDouble = place.file.indexOf("/._"_L1, place.file.lastIndexOf(u'/')) >= 0;
    return std::size_t(isAppleDouble ? tellingBytes : headOfTar);
}

/// The item itself may be a disk image under any name.
ArchiveKind kindOf(const WalkFile &found)
{
    const ArchiveKind kind = archiveKind(found.beginning, found.place.file);
    const bool isItem = found.place.path == "."_L1;
    return kind == ArchiveKind::none && isItem && udif::endsAsDiskImage(found.place.file) ? ArchiveKind::image
                                                                                          : kind;
}

class Walk {
public:
    Walk(UnpackBudget &budget, WalkVisitor &visitor)
        : m_budget(budget)
        , m_visitor(visitor)
    {
    }

    void walkFolder(const WalkPlace &place)
    {
        const QByteArray native = QFile::encodeName(place.file);
        const Descriptor folder(openQuietly(AT_FDCWD, native.constData(), O_DIRECTORY));
        if (!folder.isOpen())
            return m_visitor.unreadable(place, systemText(errno));
        const QList<Name> names = namesIn(folder.number());
        QStringList texts;
        for (const Name &name : names)
            texts.append(QString::fromUtf8(name.bytes));
        m_visitor.folder(place, texts);
        for (qsizetype i = 0; i < names.size(); ++i)
            walkEntry(below(place, texts[i]), folder.number(), names[i]);
    }

    /// Whatever lies there.
    void walkFile(const WalkPlace &place, int folder, const char *name)
    {
        const Descriptor file(openQuietly(folder, name, 0));
        if (!file.isOpen())
            return m_visitor.unreadable(place, systemText(errno));
        if (!S_ISREG(statusOf(file.number()).st_mode))
            return m_visitor.special(place);
        readFile(place, file.number());
    }

private:
    void walkEntry(const WalkPlace &place, int folder, const Name &name)
    {
        switch (typeOf(folder, name)) {
        case DT_DIR:
            return walkFolder(place);
        case DT_REG:
            return walkRegularFile(place, folder, name.bytes.constData());
        case DT_LNK:
            return tellLink(place, folder, name.bytes.constData());
        default:
            return m_visitor.special(place);
        }
    }

    /// The listing has told what it is, so the system need not be asked.
    void walkRegularFile(const WalkPlace &place, int folder, const char *name)
    {
        const Descriptor file(openQuietly(folder, name, 0));
        if (!file.isOpen())
            return m_visitor.unreadable(place, systemText(errno));
        readFile(place, file.number());
    }

    void readFile(const WalkPlace &place, int file)
    {
        char beginning[tellingBytes];
        const auto length = pread(file, beginning, tellingBytesOf(place), 0);
        if (length < 0)
            return m_visitor.unreadable(place, systemText(errno));
        tell({place, file, QByteArray::fromRawData(beginning, qsizetype(length))});
    }

    void tellLink(const WalkPlace &place, int folder, const char *name)
    {
        QByteArray target(PATH_MAX, Qt::Uninitialized);
        const auto length = readlinkat(folder, name, target.data(), std::size_t(target.size()));
        if (length < 0)
            return m_visitor.unreadable(place, systemText(errno));
        m_visitor.link(place, QFile::decodeName(target.first(qsizetype(length))));
    }

    void tell(const WalkFile &found)
    {
        if (codesignature::looksLikeMachO(found.beginning))
            return m_visitor.machO(found);
        if (found.beginning.startsWith("#!"))
            return m_visitor.script(found);
        const ArchiveKind kind = kindOf(found);
        if (kind != ArchiveKind::none)
            walkArchive(found, kind);
        m_visitor.file(found);
    }

    void walkArchive(const WalkFile &found, ArchiveKind kind)
    {
        if (found.place.archiveDepth >= deepestArchive)
            return m_visitor.tooDeep(found);
        const auto mayHold = mayHoldCode(found.place.file, kind, m_budget);
        if (!mayHold)
            return m_visitor.damagedArchive(found, mayHold.error());
        if (!*mayHold)
            return;
        const QTemporaryDir folder;
        const auto unpacked = unpack(found.place.file, kind, folder.path(), m_budget);
        m_visitor.enterArchive(found);
        walkFolder({found.place.path, folder.path(), found.place.archiveDepth + 1});
        m_visitor.leaveArchive(found);
        if (!unpacked)
            m_visitor.damagedArchive(found, unpacked.error());
    }

    UnpackBudget &m_budget;
    WalkVisitor &m_visitor;
};

} // namespace

void walkContents(const QString &item, UnpackBudget &budget, WalkVisitor &visitor)
{
    Walk walk(budget, visitor);
    const WalkPlace place{u"."_s, item, 0};
    if (QFileInfo(item).isDir())
        walk.walkFolder(place);
    else
        walk.walkFile(place, AT_FDCWD, QFile::encodeName(item).constData());
}

} // namespace toolchain::review
