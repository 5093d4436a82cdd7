#include "formats/udif/imagesignature.h"

#include "formats/bigendian.h"
#include "formats/failures.h"
#include "formats/udif/udifformat.h"
#include "support/openfile.h"

#include <QFile>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace toolchain::udif {

namespace {

constexpr quint64 longestSignature = 16 << 20;
constexpr qsizetype placeSize = 16; ///< an offset and a length

QByteArray trailerWith(QByteArray trailer, quint64 offset, quint64 length)
{
    return trailer.replace(trailerHasSignature, placeSize, BigEndianBytes().u64(offset).u64(length).bytes());
}

platform::Error failure(const QString &path, const QString &reason)
{
    return {path + u": "_s + reason};
}

std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

} // namespace

QByteArray SignaturePlace::trailerToDigest() const
{
    return trailerWith(trailer, contentLength, 0);
}

bool endsAsDiskImage(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && !file.isSequential() && file.size() >= trailerSize
        && file.seek(file.size() - trailerSize) && file.read(4) == "koly";
}

platform::Result<SignaturePlace> readSignaturePlace(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failure(path, file.errorString());
    SignaturePlace place;
    if (file.size() >= trailerSize && file.seek(file.size() - trailerSize))
        place.trailer = file.read(trailerSize);
    if (place.trailer.size() != trailerSize || !place.trailer.startsWith("koly"))
        return failure(path, u"image not recognized"_s);
    place.contentLength = quint64(file.size() - trailerSize);
    const auto offset = bigEndianAt<quint64>(place.trailer, trailerHasSignature);
    place.signatureLength = bigEndianAt<quint64>(place.trailer, trailerHasSignature + 8);
    if (place.signatureLength == 0)
        return place;
    if (place.signatureLength > place.contentLength || offset != place.contentLength - place.signatureLength)
        return failure(path, u"the code signature in it is not where it can be replaced"_s);
    place.contentLength = offset;
    return place;
}

platform::Result<QByteArray> readImageSignature(const QString &path)
{
    const auto place = readSignaturePlace(path);
    if (!place)
        return place.failure();
    if (place->signatureLength > longestSignature)
        return failure(path, u"the code signature in it is too large"_s);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(qint64(place->contentLength)))
        return failure(path, file.errorString());
    const QByteArray bytes = file.read(qint64(place->signatureLength));
    if (quint64(bytes.size()) != place->signatureLength)
        return failure(path, u"cannot be read to its end"_s);
    return bytes;
}

platform::Outcome replaceImageSignature(const QString &path, const QByteArray &superblob)
{
    const auto place = readSignaturePlace(path);
    if (!place)
        return place.failure();
    const std::filesystem::path name = QFile::encodeName(path).toStdString();
    const OpenFile old(name, LastLink::followed);
    if (old.descriptor() < 0)
        return systemFailure(name, errno);
    const quint64 offset = superblob.isEmpty() ? 0 : place->contentLength;
    const QByteArray trailer = trailerWith(place->trailer, offset, quint64(superblob.size()));
    WholeFile file(name);
    const bool isWritten = file.descriptor() >= 0 && file.append(old.descriptor(), place->contentLength)
        && file.write(viewOf(superblob)) && file.write(viewOf(trailer)) && file.takeAfter(old.descriptor())
        && file.finish();
    if (!isWritten)
        return systemFailure(name, errno);
    return {};
}

} // namespace toolchain::udif
