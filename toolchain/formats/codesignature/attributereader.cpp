#include "formats/codesignature/attributereader.h"

#include <QTimeZone>

#include "formats/codesignature/asn1time.h"
#include "formats/codesignature/berreader.h"
#include "formats/codesignature/cmsattributes.h"
#include "platform/propertylist/propertylist.h"

using namespace Qt::StringLiterals;

namespace toolchain::attributes {

namespace {

constexpr int mostValues = 16;

QByteArray bytesIn(const ASN1_STRING *text)
{
    return {reinterpret_cast<const char *>(ASN1_STRING_get0_data(text)), ASN1_STRING_length(text)};
}

X509_ATTRIBUTE *find(const List *list, const char *oid)
{
    const std::unique_ptr<ASN1_OBJECT, Freed<ASN1_OBJECT_free>> wanted(OBJ_txt2obj(oid, 1));
    const int at = list ? X509at_get_attr_by_OBJ(list, wanted.get(), -1) : -1;
    return at >= 0 ? X509at_get_attr(list, at) : nullptr;
}

/// One value if it is of this type.
const ASN1_STRING *valueOf(X509_ATTRIBUTE *attribute, int index, int type)
{
    const ASN1_TYPE *value = attribute ? X509_ATTRIBUTE_get0_type(attribute, index) : nullptr;
    return value && ASN1_TYPE_get(value) == type ? value->value.asn1_string : nullptr;
}

/// SEQUENCE { OBJECT IDENTIFIER, OCTET STRING }
DirectoryDigest directoryDigestIn(const QByteArray &der)
{
    const auto outer = readBer(der);
    const auto parts = outer ? readBerList(outer->content) : std::nullopt;
    if (!parts || parts->size() != 2 || !parts->at(0).isUniversal(V_ASN1_OBJECT)
        || !parts->at(1).isUniversal(V_ASN1_OCTET_STRING))
        return {};
    const unsigned char *at = bytesOf(parts->at(0).whole);
    const std::unique_ptr<ASN1_OBJECT, Freed<ASN1_OBJECT_free>> object(
        d2i_ASN1_OBJECT(nullptr, &at, static_cast<long>(parts->at(0).whole.size())));
    return {object ? hashTypeOfDigest(OBJ_obj2nid(object.get())) : 0, parts->at(1).content};
}

} // namespace

QByteArray octets(const List *list, const char *oid)
{
    const ASN1_STRING *value = valueOf(find(list, oid), 0, V_ASN1_OCTET_STRING);
    return value ? bytesIn(value) : QByteArray();
}

QByteArray sequence(const List *list, const char *oid)
{
    const ASN1_STRING *value = valueOf(find(list, oid), 0, V_ASN1_SEQUENCE);
    return value ? bytesIn(value) : QByteArray();
}

QDateTime time(const List *list, const char *oid)
{
    X509_ATTRIBUTE *attribute = find(list, oid);
    const ASN1_STRING *value = valueOf(attribute, 0, V_ASN1_UTCTIME);
    return momentOf(value ? value : valueOf(attribute, 0, V_ASN1_GENERALIZEDTIME));
}

QList<DirectoryDigest> directoryDigests(const List *list)
{
    QList<DirectoryDigest> digests;
    X509_ATTRIBUTE *attribute = find(list, hashAgilityOid);
    const int count = attribute ? std::min(X509_ATTRIBUTE_count(attribute), mostValues) : 0;
    for (int index = 0; index < count; ++index) {
        const ASN1_STRING *value = valueOf(attribute, index, V_ASN1_SEQUENCE);
        const DirectoryDigest digest = value ? directoryDigestIn(bytesIn(value)) : DirectoryDigest();
        if (digest.hashType != 0)
            digests.append(digest);
    }
    return digests;
}

QList<QByteArray> codeHashes(const List *list)
{
    QList<QByteArray> hashes;
    const QByteArray plist = octets(list, hashAgilityListOid);
    if (plist.isEmpty())
        return hashes;
    const QVariantMap root = platform::propertyListFromData(plist).valueOr({}).toMap();
    for (const QVariant &hash : root.value(u"cdhashes"_s).toList())
        hashes.append(hash.toByteArray());
    return hashes;
}

} // namespace toolchain::attributes
