#include "formats/codesignature/cmsattributes.h"

#include <openssl/asn1.h>

#include <algorithm>

namespace toolchain {

namespace {

constexpr const char *contentTypeOid = "1.2.840.113549.1.9.3";
constexpr const char *messageDigestOid = "1.2.840.113549.1.9.4";
constexpr const char *signingTimeOid = "1.2.840.113549.1.9.5";
constexpr const char *dataOid = "1.2.840.113549.1.7.1";
constexpr qsizetype codeHashSize = 20;

struct HashType {
    int number;
    int digest;
};

constexpr HashType hashTypes[] = {
    {1, NID_sha1}, {2, NID_sha256}, {3, NID_sha256}, {4, NID_sha384}, {5, NID_sha512}};

QByteArray wrapped(int tag, const QByteArray &content)
{
    const int size = static_cast<int>(content.size());
    QByteArray bytes(ASN1_object_size(1, size, tag), '\0');
    auto *at = reinterpret_cast<unsigned char *>(bytes.data());
    ASN1_put_object(&at, tag == V_ASN1_OCTET_STRING ? 0 : 1, size, tag, V_ASN1_UNIVERSAL);
    std::copy(content.begin(), content.end(), reinterpret_cast<char *>(at));
    return bytes;
}

QByteArray octets(const QByteArray &content)
{
    return wrapped(V_ASN1_OCTET_STRING, content);
}

QByteArray objectOf(const char *oid)
{
    const std::unique_ptr<ASN1_OBJECT, Freed<ASN1_OBJECT_free>> object(OBJ_txt2obj(oid, 1));
    return encoded<i2d_ASN1_OBJECT>(object.get());
}

/// UTCTime until 2049, GeneralizedTime from then on (RFC 5652, 11.3).
QByteArray timeOf(const QDateTime &moment)
{
    const QDateTime time = moment.isValid() ? moment : QDateTime::currentDateTimeUtc();
    const std::unique_ptr<ASN1_TIME, Freed<ASN1_TIME_free>> value(
        ASN1_TIME_set(nullptr, time.toSecsSinceEpoch()));
    return encoded<i2d_ASN1_TIME>(value.get());
}

QList<DirectoryDigest> sortedByType(QList<DirectoryDigest> directories)
{
    std::sort(directories.begin(), directories.end(),
              [](const auto &left, const auto &right) { return left.hashType < right.hashType; });
    return directories;
}

/// As Apple's property list writer lays it out.
QByteArray codeHashList(const QList<DirectoryDigest> &directories)
{
    QByteArray list = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                      "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                      "<plist version=\"1.0\">\n<dict>\n\t<key>cdhashes</key>\n\t<array>\n";
    for (const DirectoryDigest &directory : directories)
        list += "\t\t<data>\n\t\t" + directory.digest.left(codeHashSize).toBase64() + "\n\t\t</data>\n";
    return list + "\t</array>\n</dict>\n</plist>\n";
}

QByteArray agilityValue(const DirectoryDigest &directory)
{
    const ASN1_OBJECT *algorithm = OBJ_nid2obj(digestOfHashType(directory.hashType));
    unsigned char *bytes = nullptr;
    const int length = i2d_ASN1_OBJECT(algorithm, &bytes);
    const QByteArray oid(reinterpret_cast<const char *>(bytes), std::max(length, 0));
    OPENSSL_free(bytes);
    return wrapped(V_ASN1_SEQUENCE, oid + octets(directory.digest));
}

} // namespace

int digestOfHashType(int hashType)
{
    for (const HashType &type : hashTypes) {
        if (type.number == hashType)
            return type.digest;
    }
    return NID_undef;
}

int hashTypeOfDigest(int nid)
{
    for (const HashType &type : hashTypes) {
        if (type.digest == nid)
            return type.number;
    }
    return 0;
}

const EVP_MD *digestFor(QCryptographicHash::Algorithm algorithm)
{
    switch (algorithm) {
    case QCryptographicHash::Sha1:
        return EVP_sha1();
    case QCryptographicHash::Sha384:
        return EVP_sha384();
    case QCryptographicHash::Sha512:
        return EVP_sha512();
    default:
        return EVP_sha256();
    }
}

QByteArray attributeOf(const char *oid, const QList<QByteArray> &values)
{
    QList<QByteArray> sorted = values;
    std::sort(sorted.begin(), sorted.end());
    return wrapped(V_ASN1_SEQUENCE, objectOf(oid) + wrapped(V_ASN1_SET, sorted.join()));
}

QList<QByteArray> plainAttributes(const QByteArray &contentDigest, const QDateTime &signingTime)
{
    return {attributeOf(contentTypeOid, {objectOf(dataOid)}),
            attributeOf(signingTimeOid, {timeOf(signingTime)}),
            attributeOf(messageDigestOid, {octets(contentDigest)})};
}

QList<QByteArray> codeAttributes(const CodeCmsOrder &order)
{
    const auto directories = sortedByType(order.directories);
    QList<QByteArray> agility;
    for (const DirectoryDigest &directory : directories)
        agility.append(agilityValue(directory));
    QList<QByteArray> attributes = plainAttributes(order.contentDigest, order.signingTime);
    attributes.append(attributeOf(hashAgilityOid, agility));
    attributes.append(attributeOf(hashAgilityListOid, {octets(codeHashList(directories))}));
    std::sort(attributes.begin(), attributes.end());
    return attributes;
}

} // namespace toolchain
