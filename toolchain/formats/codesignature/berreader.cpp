#include "formats/codesignature/berreader.h"

#include <openssl/asn1.h>
#include <openssl/err.h>

#include "formats/cryptography.h"

namespace toolchain {

namespace {

constexpr int deepest = 32;
constexpr qsizetype mostValues = 1000;
constexpr qsizetype endMarkSize = 2;

std::optional<BerValue> readAt(const QByteArray &bytes, int depth);

/// The length of what lies before the end mark of an indefinite length; below 0 if there is no such mark.
qsizetype lengthToEndMark(const QByteArray &bytes, int depth)
{
    qsizetype at = 0;
    while (at + endMarkSize <= bytes.size()) {
        if (bytes[at] == 0 && bytes[at + 1] == 0)
            return at;
        const auto value =
            readAt(QByteArray::fromRawData(bytes.constData() + at, bytes.size() - at), depth + 1);
        if (!value)
            return -1;
        at += value->whole.size();
    }
    return -1;
}

std::optional<BerValue> readAt(const QByteArray &bytes, int depth)
{
    constexpr int failed = 0x80;
    constexpr int indefinite = 1;
    const unsigned char *at = bytesOf(bytes);
    long length = 0;
    BerValue value;
    const int form = bytes.isEmpty() || depth > deepest
        ? failed
        : ASN1_get_object(&at, &length, &value.tag, &value.tagClass, static_cast<long>(bytes.size()));
    ERR_clear_error();
    if (form & failed)
        return std::nullopt;
    const qsizetype header = at - bytesOf(bytes);
    const bool hasEndMark = form & indefinite;
    const qsizetype size = hasEndMark ? lengthToEndMark(bytes.mid(header), depth) : length;
    if (size < 0 || header + size > bytes.size())
        return std::nullopt;
    value.content = bytes.mid(header, size);
    value.whole = bytes.left(header + size + (hasEndMark ? endMarkSize : 0));
    return value;
}

} // namespace

std::optional<BerValue> readBer(const QByteArray &bytes)
{
    return readAt(bytes, 0);
}

std::optional<QList<BerValue>> readBerList(const QByteArray &bytes)
{
    QList<BerValue> values;
    for (qsizetype at = 0; at < bytes.size();) {
        const auto value = readBer(bytes.mid(at));
        if (!value || value->whole.isEmpty() || values.size() == mostValues)
            return std::nullopt;
        at += value->whole.size();
        values.append(*value);
    }
    return values;
}

} // namespace toolchain
