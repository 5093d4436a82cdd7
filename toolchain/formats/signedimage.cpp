#include "formats/signedimage.h"

#include "formats/bigendian.h"
#include "formats/fileblocks.h"
#include "formats/udif/udifreader.h"
#include "support/wholefile.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace toolchain {

using namespace udif;

namespace {

constexpr qint64 longestNote = 16 << 20;
constexpr qsizetype placeSize = 16; ///< an offset and a length

QByteArray jsonOf(const ImageNote &note)
{
    QJsonObject form{
        {u"note"_s, u"Left by a local stand-in for codesign and stapler; no value for macOS."_s}};
    if (!note.signature.bytes.isEmpty()) {
        form.insert(u"certificate"_s, QString::fromLatin1(note.signature.certificate.toBase64()));
        form.insert(u"signature"_s, QString::fromLatin1(note.signature.bytes.toBase64()));
    }
    if (note.ticket)
        form.insert(u"ticket"_s, QJsonDocument::fromJson(jsonOf(*note.ticket)).object());
    return QJsonDocument(form).toJson();
}

QByteArray bytesFrom(const QJsonValue &value)
{
    return QByteArray::fromBase64(value.toString().toLatin1());
}

} // namespace

bool SignedImage::looksLikeOne(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.seek(file.size() - trailerSize) && file.read(4) == "koly";
}

SignedImage::SignedImage(QString path)
    : m_path(std::move(path))
{
    const UdifReader image(m_path.toStdString());
    if (!image.error().empty())
        m_error = QString::fromStdString(image.error());
    else if (!readTrailer())
        m_error = u"the code signature in it is not where it can be replaced"_s;
    else if (!readContent())
        m_error = u"cannot be read to its end"_s;
}

bool SignedImage::readTrailer()
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(file.size() - trailerSize))
        return false;
    m_trailer = file.read(trailerSize);
    m_contentLength = file.size() - trailerSize;
    const auto offset = qint64(bigEndianAt<quint64>(m_trailer, trailerHasSignature));
    m_noteLength = qint64(bigEndianAt<quint64>(m_trailer, trailerHasSignature + 8));
    m_trailer.replace(trailerHasSignature, placeSize, QByteArray(placeSize, '\0'));
    if (m_noteLength == 0)
        return true;
    const bool isInPlace = m_noteLength > 0 && m_noteLength <= longestNote && m_noteLength <= m_contentLength
        && offset == m_contentLength - m_noteLength;
    m_contentLength -= m_noteLength;
    return isInPlace;
}

bool SignedImage::readContent()
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QCryptographicHash hash(QCryptographicHash::Sha256);
    const auto addBlock = [&hash](QByteArrayView block) {
        hash.addData(block);
        return true;
    };
    if (!readBlocks(file, m_contentLength, addBlock))
        return false;
    hash.addData(m_trailer);
    m_digest = hash.result();
    if (m_noteLength > 0)
        readNote();
    return true;
}

void SignedImage::readNote()
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(m_contentLength))
        return;
    const QJsonObject form = QJsonDocument::fromJson(file.read(m_noteLength)).object();
    m_hasForeignSignature = form.isEmpty();
    m_note.signature = {bytesFrom(form[u"certificate"]), bytesFrom(form[u"signature"])};
    m_note.ticket = ticketFromJson(QJsonDocument(form[u"ticket"].toObject()).toJson());
}

QByteArray SignedImage::sealDigest() const
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(m_digest);
    hash.addData(m_note.signature.certificate);
    hash.addData(m_note.signature.bytes);
    return hash.result().toHex();
}

QString SignedImage::write(const ImageNote &note) const
{
    QFile image(m_path);
    if (!image.open(QIODevice::ReadOnly))
        return m_path + u": "_s + image.errorString();
    const QByteArray json = jsonOf(note);
    QByteArray trailer = m_trailer;
    trailer.replace(trailerHasSignature, placeSize,
                    BigEndianBytes().u64(quint64(m_contentLength)).u64(quint64(json.size())).bytes());
    WholeFile file(m_path.toStdString());
    const auto write = [&file](QByteArrayView bytes) {
        return file.write({bytes.data(), std::size_t(bytes.size())});
    };
    const bool isWritten = file.descriptor() >= 0 && readBlocks(image, m_contentLength, write) && write(json)
        && write(trailer) && file.finish();
    return isWritten ? QString() : QString::fromStdString(systemError(m_path.toStdString(), errno));
}

} // namespace toolchain
