#include "notaryd/multipart.h"

#include "notaryd/partlist.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUuid>

#include <fcntl.h>
#include <sys/sendfile.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <optional>

#include "formats/statefolder.h"

using namespace Qt::StringLiterals;

namespace notaryd {

namespace {

constexpr int greatestNumber = 10'000;
constexpr qint64 leastPart = 5LL << 20;

bool isIdentifier(const QByteArray &text)
{
    static const QRegularExpression form(uR"(\A[0-9a-f]{32}\z)"_s);
    return form.match(QString::fromLatin1(text)).hasMatch();
}

/// Behind so many bytes of the target.
bool appendFile(int target, qint64 size, const QByteArray &path)
{
    if (ftruncate(target, off_t(size)) != 0 || lseek(target, 0, SEEK_END) != off_t(size))
        return false;
    const int source = open(path.constData(), O_RDONLY | O_CLOEXEC);
    ssize_t copied = 0;
    do
        copied = sendfile(target, source, nullptr, 1 << 30);
    while (copied > 0);
    if (source >= 0)
        close(source);
    return source >= 0 && copied == 0;
}

} // namespace

bool joinParts(const QString &list, const QString &object)
{
    QFile file(list);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QByteArray first;
    qint64 size = 0;
    int target = -1;
    bool isWhole = true;
    for (const QByteArray &line : file.readAll().split('\n')) {
        const QByteArray part = line.mid(line.indexOf(' ') + 1);
        if (first.isEmpty())
            target = open((first = part).constData(), O_WRONLY | O_CLOEXEC);
        else if (isWhole && access(part.constData(), F_OK) == 0 && !part.isEmpty()) {
            isWhole = appendFile(target, size, part);
            if (isWhole)
                unlink(part.constData());
        }
        size += line.left(line.indexOf(' ')).toLongLong();
    }
    if (target >= 0)
        close(target);
    return isWhole && target >= 0
        && std::rename(first.constData(), QFile::encodeName(object).constData()) == 0;
}

QByteArray MultipartUpload::begin(const QString &objectFolder)
{
    const QByteArray identifier = QUuid::createUuid().toByteArray(QUuid::Id128);
    const QString folder = objectFolder + u"/parts-"_s + QString::fromLatin1(identifier);
    return toolchain::makePrivateFolder(folder) ? identifier : QByteArray();
}

MultipartUpload::MultipartUpload(const QString &objectFolder, QByteArray identifier)
    : m_identifier(std::move(identifier))
    , m_isIdentifier(notaryd::isIdentifier(m_identifier))
    , m_folder(objectFolder + u"/parts-"_s + QString::fromLatin1(m_identifier))
{
}

bool MultipartUpload::isOpen() const
{
    return m_isIdentifier && QFileInfo(m_folder).isDir() && !isCompleted();
}

bool MultipartUpload::isCompleted() const
{
    return m_isIdentifier && QFileInfo::exists(m_folder + u"/completed"_s);
}

QString MultipartUpload::listPath() const
{
    return m_folder + u"/list"_s + partListSuffix;
}

QString MultipartUpload::partPath(const Part &part) const
{
    return u"%1/%2-%3"_s.arg(m_folder, QString::number(part.number).rightJustified(5, u'0'),
                             QString::fromLatin1(part.etag));
}

bool MultipartUpload::keepPart(const QByteArray &number, const QString &file, const QByteArray &etag) const
{
    const Part part{number.toInt(), etag, 0};
    if (part.number < 1 || part.number > greatestNumber)
        return false;
    for (const Part &earlier : parts()) {
        if (earlier.number == part.number && earlier.etag != etag)
            QFile::remove(partPath(earlier));
    }
    return std::rename(QFile::encodeName(file).constData(), QFile::encodeName(partPath(part)).constData())
        == 0;
}

QList<MultipartUpload::Part> MultipartUpload::parts() const
{
    QList<Part> parts;
    for (const QFileInfo &file : QDir(m_folder).entryInfoList({u"[0-9]*-*"_s}, QDir::Files, QDir::Name))
        parts.append({file.fileName().left(5).toInt(), file.fileName().mid(6).toLatin1(), file.size()});
    return parts;
}

QString MultipartUpload::objectionTo(const QList<Part> &wanted) const
{
    const auto isOutOfOrder = [](const Part &one, const Part &next) { return next.number <= one.number; };
    if (std::adjacent_find(wanted.begin(), wanted.end(), isOutOfOrder) != wanted.end())
        return u"InvalidPartOrder"_s;
    for (qsizetype index = 0; index < wanted.size(); ++index) {
        const QFileInfo file(partPath(wanted.at(index)));
        if (!file.isFile())
            return u"InvalidPart"_s;
        if (index + 1 < wanted.size() && file.size() < leastPart)
            return u"EntityTooSmall"_s;
    }
    return {};
}

/// The parts' sizes and files, one on a line, in their order.
bool MultipartUpload::listParts(const QList<Part> &wanted) const
{
    QByteArray lines;
    for (const Part &part : wanted) {
        const QString path = partPath(part);
        lines += QByteArray::number(QFileInfo(path).size()) + ' ' + QFile::encodeName(path) + '\n';
    }
    QFile file(listPath());
    return file.open(QIODevice::WriteOnly) && file.write(lines) == lines.size() && file.flush();
}

platform::Outcome MultipartUpload::complete(const QByteArray &list) const
{
    const auto wanted = partsIn(list);
    if (!wanted)
        return platform::Error{u"MalformedXML"_s};
    const QString objection = objectionTo(*wanted);
    if (!objection.isEmpty())
        return platform::Error{objection};
    QFile mark(m_folder + u"/completed"_s);
    if (!listParts(*wanted) || !mark.open(QIODevice::WriteOnly))
        return platform::Error{u"InternalError"_s};
    return {};
}

void MultipartUpload::abort() const
{
    QDir(m_folder).removeRecursively();
}

} // namespace notaryd
