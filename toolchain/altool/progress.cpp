#include "altool/progress.h"

#include "support/console.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

constexpr auto pause = std::chrono::milliseconds(200);
constexpr double mebibyte = 1 << 20;

QString progressPath(const QString &uploadedFile)
{
    const QString session = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QString folder = session + u"/sealwright-uploads"_s;
    if (session.isEmpty() || !QFileInfo(folder).isDir())
        return {};
    const QByteArray path = QFile::encodeName(QFileInfo(uploadedFile).absoluteFilePath());
    return folder + u'/'
        + QString::fromLatin1(QCryptographicHash::hash(path, QCryptographicHash::Sha1).toHex());
}

} // namespace

ProgressLine::ProgressLine()
    : m_isTerminal(isatty(STDERR_FILENO) == 1)
{
}

ProgressLine::~ProgressLine()
{
    if (m_isOpen)
        printError("\n");
}

void ProgressLine::show(qint64 sent, qint64 size)
{
    const auto now = Clock::now();
    if (!m_isTerminal || (now - m_shown < pause && sent < size))
        return;
    m_shown = now;
    m_isOpen = true;
    const double seconds = std::max(0.001, std::chrono::duration<double>(now - m_start).count());
    const QString line =
        u"\r%1 % of %2 MB, %3 MB/s "_s.arg(QString::number(sent * 100 / std::max<qint64>(size, 1)),
                                           QString::number(double(size) / mebibyte, 'f', 1),
                                           QString::number(double(sent) / mebibyte / seconds, 'f', 1));
    printError(line.toStdString());
}

ProgressFile::ProgressFile(const QString &uploadedFile)
    : m_path(progressPath(uploadedFile))
{
}

ProgressFile::~ProgressFile()
{
    if (!m_path.isNull())
        QFile::remove(m_path);
}

void ProgressFile::show(qint64 sent, qint64 size)
{
    const auto now = Clock::now();
    if (m_path.isNull() || (now - m_shown < pause && sent < size))
        return;
    m_shown = now;
    QFile file(m_path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(QByteArray::number(sent) + ' ' + QByteArray::number(size) + '\n');
}

} // namespace toolchain
