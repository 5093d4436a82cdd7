#include "formats/sevenzip.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

constexpr int withoutLimit = -1;

QByteArray scratchFolder()
{
    const QByteArray chosen = qgetenv("TMPDIR");
    return chosen.isEmpty() ? QByteArray("/var/tmp") : chosen;
}

/// Takes what the program prints, piece by piece. Answers what went wrong, or an empty text.
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

bool isZero(QByteArrayView bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte == '\0'; });
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

platform::Result<QString> apfsVolumeName(const QString &file)
{
    constexpr qsizetype mostOutput = 1 << 20; // the volume comes before its files
    QByteArray listing;
    const auto listed = run({u"l"_s, u"-slt"_s, u"-tAPFS"_s, u"--"_s, file}, [&](QByteArrayView bytes) {
        if (listing.size() < mostOutput)
            listing.append(bytes);
        return true;
    });
    static const QRegularExpression name(u"(?m)^volume_name: (.+)$"_s);
    const auto match = name.match(QString::fromUtf8(listing));
    if (!listed)
        return listed.failure();
    if (!match.hasMatch())
        return platform::Error{u"no mountable file systems"_s};
    return match.captured(1).trimmed();
}

platform::Outcome extractApfs(const QString &file, const QString &folder)
{
    return run({u"x"_s, u"-y"_s, u"-bd"_s, u"-tAPFS"_s, u"-o"_s + folder, u"--"_s, file},
               [](QByteArrayView) { return true; });
}

} // namespace sevenzip

} // namespace toolchain
