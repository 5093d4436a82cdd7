#include "formats/sevenzip.h"

#include "formats/apfslisting.h"
#include "formats/fileattributes.h"
#include "formats/zeros.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

constexpr int withoutLimit = -1;

QByteArray scratchFolder()
{
    const QByteArray chosen = qgetenv("TMPDIR");
    return chosen.isEmpty() ? QByteArray("/var/tmp") : chosen;
}

/// Takes what the program prints, piece by piece.
platform::Outcome run(const QStringList &arguments, const ByteSink &output)
{
    QProcess program;
    program.setProcessChannelMode(QProcess::SeparateChannels);
    program.setStandardErrorFile(QProcess::nullDevice());
    program.setStandardInputFile(QProcess::nullDevice());
    program.start(u"7z"_s, arguments, QIODevice::ReadOnly);
    if (!program.waitForStarted(withoutLimit))
        return platform::Error{u"the program 7z, which reads such images, is not installed"_s};
    bool goesOn = true;
    while (goesOn && (program.bytesAvailable() > 0 || program.waitForReadyRead(withoutLimit)))
        goesOn = output(program.readAllStandardOutput());
    if (!goesOn) {
        program.kill();
        program.waitForFinished(withoutLimit);
        return platform::Error{u"the image holds more than it says, or there is no room for it"_s};
    }
    program.waitForFinished(withoutLimit);
    const bool isDone = program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0;
    return isDone ? platform::Outcome() : platform::Error{u"corrupt image"_s};
}

platform::Result<ApfsListing> listApfs(const QString &file)
{
    ApfsListing listing;
    const auto listed =
        run({u"l"_s, u"-slt"_s, u"-tAPFS"_s, u"--"_s, file}, [&listing](QByteArrayView bytes) {
            listing.take(bytes);
            return true;
        });
    if (!listed)
        return listed.failure();
    listing.finish();
    return listing;
}

/// A container with a locker of keys has encrypted volumes. Public document: Apple File System Reference,
/// nx_superblock_t.
bool isEncryptedApfs(const QString &file)
{
    constexpr qint64 lockerOffset = 1296; // its first block and the count of its blocks, of 8 bytes each
    QFile container(file);
    if (!container.open(QIODevice::ReadOnly) || !container.seek(lockerOffset))
        return false;
    const QByteArray locker = container.read(16);
    return locker.size() == 16 && !isZero(locker);
}

/// Whether a file, with all links on the way to it followed, lies below a folder.
bool liesBelow(const QString &path, const QString &folder)
{
    const QString end = QFileInfo(path).canonicalFilePath();
    return end.startsWith(QFileInfo(folder).canonicalFilePath() + u'/');
}

/// Gives a file the extended attribute for which 7z has made the file FILE:NAME beside it.
platform::Outcome carryAttribute(const QString &path)
{
    constexpr qint64 longest = 256 << 20;
    const qsizetype colon = path.lastIndexOf(u':');
    const QString bearer = path.first(std::max<qsizetype>(colon, 0));
    QFile value(path);
    // A name that 7z has changed on the way leaves nothing here that could be carried.
    if (!QFileInfo(path).isFile() || QFileInfo(path).isSymLink() || !QFileInfo::exists(bearer))
        return {};
    if (!value.open(QIODevice::ReadOnly) || value.size() > longest)
        return platform::Error{path + u": cannot be read"_s};
    const std::string name = QFile::encodeName(bearer).toStdString();
    std::error_code ignored;
    const auto rights = std::filesystem::status(name, ignored).permissions();
    std::filesystem::permissions(name, rights | std::filesystem::perms::owner_write, ignored);
    const auto written = writeAttribute(bearer, path.sliced(colon + 1).toUtf8(), value.readAll());
    std::filesystem::permissions(name, rights, ignored);
    if (written)
        value.remove();
    return written;
}

} // namespace

ScratchFile::ScratchFile()
    : m_descriptor(open(scratchFolder().constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600))
{
}

ScratchFile::~ScratchFile()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

bool ScratchFile::append(QByteArrayView bytes)
{
    constexpr qsizetype pieceSize = 64 << 10;
    while (!bytes.isEmpty()) {
        const QByteArrayView piece = bytes.first(std::min(bytes.size(), pieceSize));
        const ssize_t length = isZero(piece)
            ? piece.size()
            : pwrite(m_descriptor, piece.data(), std::size_t(piece.size()), off_t(m_size));
        if (length < 0 && errno == EINTR)
            continue;
        if (length < 0)
            return false;
        m_size += quint64(length);
        bytes = bytes.sliced(length);
    }
    return ftruncate(m_descriptor, off_t(m_size)) == 0;
}

QString ScratchFile::path() const
{
    return u"/proc/%1/fd/%2"_s.arg(getpid()).arg(m_descriptor);
}

namespace sevenzip {

platform::Result<std::shared_ptr<ScratchFile>> unpackDisk(const QString &image, quint64 size)
{
    auto disk = std::make_shared<ScratchFile>();
    if (disk->descriptor() < 0)
        return platform::Error{u"there is no folder for temporary files"_s};
    quint64 written = 0;
    const auto unpacked = run({u"e"_s, u"-so"_s, u"-tdmg"_s, u"--"_s, image}, [&](QByteArrayView bytes) {
        written += quint64(bytes.size());
        return written <= size && disk->append(bytes);
    });
    if (!unpacked)
        return unpacked.failure();
    if (written != size)
        return platform::Error{u"corrupt image"_s};
    return disk;
}

platform::Result<ApfsVolume> apfsVolume(const QString &file)
{
    const auto listing = listApfs(file);
    if (!listing)
        return isEncryptedApfs(file)
            ? platform::Error{u"the volume is encrypted, which cannot be read here"_s}
            : listing.failure();
    if (listing->volumeName().isEmpty())
        return platform::Error{u"no mountable file systems"_s};
    if (!listing->problem().isEmpty())
        return platform::Error{listing->problem()};
    return ApfsVolume{listing->volumeName(), listing->count(), listing->size(), listing->attributes()};
}

platform::Outcome extractApfs(const QString &file, const ApfsVolume &volume, const QString &folder)
{
    const auto extracted = run({u"x"_s, u"-y"_s, u"-bd"_s, u"-tAPFS"_s, u"-o"_s + folder, u"--"_s, file},
                               [](QByteArrayView) { return true; });
    if (!extracted)
        return extracted.failure();
    for (const QString &attribute : volume.attributes) {
        const QString path = folder + u'/' + attribute;
        // The listing has names as the image has them; 7z has unpacked those that lead out under others.
        const bool leadsOut = QFileInfo::exists(path) && !liesBelow(path, folder);
        const auto carried =
            leadsOut ? platform::Error{attribute + u": leads out of the volume"_s} : carryAttribute(path);
        if (!carried)
            return carried.failure();
    }
    return {};
}

} // namespace sevenzip

} // namespace toolchain
