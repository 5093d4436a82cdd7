#include "formats/codesignature/superblob.h"

#include "formats/bigendian.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain::codesignature {

namespace {

constexpr qsizetype headerSize = 8;
constexpr qsizetype indexAt = 12;
constexpr qsizetype entrySize = 8;
/// A signature has some ten, a set of requirements five.
constexpr quint32 mostBlobs = 64;

/// The blobs' places must not meet, or a small file could hold a large signature.
bool overlap(QList<std::pair<qsizetype, qsizetype>> places)
{
    std::sort(places.begin(), places.end());
    for (qsizetype index = 1; index < places.size(); ++index) {
        if (places[index].first < places[index - 1].first + places[index - 1].second)
            return true;
    }
    return false;
}

/// The place of a blob that has any magic number.
Result<std::pair<qsizetype, qsizetype>> placeOf(QByteArrayView all, qsizetype offset, qsizetype indexEnd)
{
    if (offset < indexEnd || offset > all.size() - headerSize)
        return Error{u"a blob of the signature begins outside of it"_s};
    const auto length = qsizetype(bigEndianAt<quint32>(all, offset + 4));
    if (length < headerSize || length > all.size() - offset)
        return Error{u"a blob of the signature reaches beyond its end"_s};
    return std::pair{offset, length};
}

} // namespace

QByteArray makeBlob(quint32 magic, QByteArrayView content)
{
    return BigEndianBytes().u32(magic).u32(quint32(content.size() + headerSize)).raw(content).bytes();
}

Result<QByteArrayView> blobIn(QByteArrayView bytes, quint32 magic)
{
    const auto length = qsizetype(bigEndianAt<quint32>(bytes, 4));
    if (bytes.size() < headerSize || bigEndianAt<quint32>(bytes, 0) != magic)
        return Error{u"the signature does not begin with the number %1"_s.arg(magic, 8, 16, '0'_L1)};
    if (length < headerSize || length > bytes.size())
        return Error{
            u"the signature is said to have %1 bytes, and there are %2"_s.arg(length).arg(bytes.size())};
    return bytes.first(length);
}

QByteArrayView blobContent(QByteArrayView blob)
{
    return blob.size() > headerSize ? blob.sliced(headerSize) : QByteArrayView();
}

Result<SuperBlob> SuperBlob::parse(QByteArrayView bytes, quint32 magic)
{
    const auto all = blobIn(bytes, magic);
    if (!all)
        return all.failure();
    const auto count = bigEndianAt<quint32>(*all, headerSize);
    const qsizetype indexEnd = indexAt + entrySize * qsizetype(count);
    if (count > mostBlobs || indexEnd > all->size())
        return Error{u"the index of the signature is cut off"_s};
    SuperBlob result(magic);
    QList<std::pair<qsizetype, qsizetype>> places;
    for (quint32 index = 0; index < count; ++index) {
        const qsizetype entry = indexAt + entrySize * qsizetype(index);
        const auto type = bigEndianAt<quint32>(*all, entry);
        const auto place = placeOf(*all, bigEndianAt<quint32>(*all, entry + 4), indexEnd);
        if (!place)
            return place.failure();
        if (!result.blob(type).isNull())
            return Error{u"the signature has two blobs of type %1"_s.arg(type)};
        places.append(*place);
        result.set(type, all->sliced(place->first, place->second).toByteArray());
    }
    return overlap(places) ? Result<SuperBlob>(Error{u"blobs of the signature overlap"_s}) : result;
}

void SuperBlob::set(quint32 type, QByteArray blob)
{
    remove(type);
    const auto behind = std::find_if(m_blobs.begin(), m_blobs.end(),
                                     [type](const IndexedBlob &other) { return other.type > type; });
    m_blobs.insert(behind, {type, std::move(blob)});
}

void SuperBlob::remove(quint32 type)
{
    m_blobs.removeIf([type](const IndexedBlob &blob) { return blob.type == type; });
}

QByteArray SuperBlob::blob(quint32 type) const
{
    const auto found = std::find_if(m_blobs.begin(), m_blobs.end(),
                                    [type](const IndexedBlob &blob) { return blob.type == type; });
    return found == m_blobs.end() ? QByteArray() : found->bytes;
}

qsizetype SuperBlob::size() const
{
    qsizetype size = indexAt + entrySize * m_blobs.size();
    for (const IndexedBlob &blob : m_blobs)
        size += blob.bytes.size();
    return size;
}

QByteArray SuperBlob::bytes() const
{
    QList<std::pair<quint32, qsizetype>> index;
    for (const IndexedBlob &blob : m_blobs)
        index.append({blob.type, blob.bytes.size()});
    QByteArray bytes = superBlobIndex(m_magic, index);
    for (const IndexedBlob &blob : m_blobs)
        bytes += blob.bytes;
    return bytes;
}

QByteArray superBlobIndex(quint32 magic, const QList<std::pair<quint32, qsizetype>> &blobs)
{
    qsizetype offset = indexAt + entrySize * blobs.size();
    BigEndianBytes index;
    for (const auto &[type, length] : blobs) {
        index.u32(type).u32(quint32(offset));
        offset += length;
    }
    return BigEndianBytes()
        .u32(magic)
        .u32(quint32(offset))
        .u32(quint32(blobs.size()))
        .raw(index.bytes())
        .bytes();
}

} // namespace toolchain::codesignature
