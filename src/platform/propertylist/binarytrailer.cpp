#include "platform/propertylist/binarytrailer.h"

using namespace Qt::StringLiterals;

namespace platform::propertylist {

namespace {

Outcome checkTrailer(const Trailer &trailer, qint64 start)
{
    const auto isSize = [](int size) { return size >= 1 && size <= largestField; };
    if (!isSize(trailer.offsetSize))
        return errorAt(start + 6, u"offsets of %1 bytes are not possible"_s.arg(trailer.offsetSize));
    if (!isSize(trailer.referenceSize))
        return errorAt(start + 7, u"references of %1 bytes are not possible"_s.arg(trailer.referenceSize));
    if (trailer.tableOffset < quint64(binaryMagic.size()) || trailer.tableOffset > quint64(start))
        return errorAt(start + 24, u"the offset table lies outside the list"_s);
    if (trailer.objectCount == 0)
        return errorAt(start + 8, u"the list holds no object"_s);
    if (trailer.objectCount > (quint64(start) - trailer.tableOffset) / quint64(trailer.offsetSize))
        return errorAt(start + 8, u"the offset table is too short for %1 objects"_s.arg(trailer.objectCount));
    if (trailer.tableOffset + trailer.objectCount * quint64(trailer.offsetSize) != quint64(start))
        return errorAt(start, u"there are bytes between the offset table and the trailer"_s);
    return {};
}

} // namespace

Result<Trailer> readTrailer(QByteArrayView list)
{
    if (!list.startsWith(binaryMagic))
        return errorAt(binaryMagic.size() - 1, u"this version of the binary form is not known"_s);
    if (list.size() < binaryMagic.size() + trailerSize)
        return errorAt(list.size(), u"the list ends before its trailer"_s);
    const qint64 start = list.size() - trailerSize;
    const Trailer trailer{.offsetSize = int(fieldAt(list, start + 6, 1)),
                          .referenceSize = int(fieldAt(list, start + 7, 1)),
                          .objectCount = fieldAt(list, start + 8, 8),
                          .topObject = fieldAt(list, start + 16, 8),
                          .tableOffset = fieldAt(list, start + 24, 8)};
    const Outcome checked = checkTrailer(trailer, start);
    return checked ? Result<Trailer>(trailer) : checked.failure();
}

quint64 fieldAt(QByteArrayView list, qint64 position, int size)
{
    quint64 number = 0;
    for (const char byte : list.sliced(position, size))
        number = number << 8 | static_cast<uchar>(byte);
    return number;
}

Error errorAt(qint64 position, const QString &message)
{
    return {u"Byte %1: %2"_s.arg(position).arg(message)};
}

} // namespace platform::propertylist
