#include "formats/codesignature/cmsform.h"

#include "formats/codesignature/berreader.h"
#include "formats/cryptography.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

constexpr char objectTag = 0x06;
constexpr char octetsTag = 0x04;
constexpr char sequenceTag = 0x30;
constexpr char setTag = 0x31;
constexpr char firstContext = char(0xa0);
constexpr char secondContext = char(0xa1);

const QByteArray null = QByteArray::fromHex("0500");
const QByteArray versionOne = QByteArray::fromHex("020101");
const QByteArray versionThree = QByteArray::fromHex("020103");
const QByteArray signedDataType = QByteArray::fromHex("06092a864886f70d010702");
const QByteArray dataType = QByteArray::fromHex("06092a864886f70d010701");
const QByteArray timeStampTokenAttribute = QByteArray::fromHex("060b2a864886f70d010910020e");
const QByteArray timeStampType = QByteArray::fromHex("060b2a864886f70d0109100104");

/// Walks over values that follow one another.
class Values {
public:
    explicit Values(const QByteArray &bytes)
        : m_values(readBerList(bytes).value_or(QList<BerValue>()))
    {
    }

    /// The next value if it begins with this byte; else nothing, and nothing fits any more.
    std::optional<BerValue> take(char first)
    {
        if (!isNext(first)) {
            m_isGood = false;
            return std::nullopt;
        }
        return m_values[m_next++];
    }
    QByteArray contentOf(char first)
    {
        const auto value = take(first);
        return value ? value->content : QByteArray();
    }
    void takeExactly(const QByteArray &bytes)
    {
        const auto value = bytes.isEmpty() ? std::nullopt : take(bytes.front());
        m_isGood = m_isGood && value && value->whole == bytes;
    }
    [[nodiscard]] bool isNext(char first) const
    {
        return m_next < m_values.size() && m_values[m_next].whole.startsWith(first);
    }
    void skipAll(char first)
    {
        while (isNext(first))
            ++m_next;
    }
    /// Everything has been taken, and all of it was as it had to be.
    [[nodiscard]] bool isDone() const { return m_isGood && m_next == m_values.size(); }

private:
    QList<BerValue> m_values;
    qsizetype m_next = 0;
    bool m_isGood = true;
};

/// libcrypto's number of the object that the bytes hold.
int numberOf(const QByteArray &object)
{
    const unsigned char *at = bytesOf(object);
    const std::unique_ptr<ASN1_OBJECT, Freed<ASN1_OBJECT_free>> parsed(
        d2i_ASN1_OBJECT(nullptr, &at, static_cast<long>(object.size())));
    return parsed ? OBJ_obj2nid(parsed.get()) : NID_undef;
}

/// The number of an algorithm: an object with nothing, or NULL, behind it; curves and the like have no place
/// in a signature. Undefined for anything else.
int algorithmIn(const QByteArray &content)
{
    Values values(content);
    const auto object = values.take(objectTag);
    if (values.isNext(null.front()))
        values.takeExactly(null);
    return object && values.isDone() ? numberOf(object->whole) : NID_undef;
}

bool isDigest(int number)
{
    return number == NID_sha1 || number == NID_sha256 || number == NID_sha384 || number == NID_sha512;
}

/// Digests, the signer's among them.
bool areDigests(const QByteArray &content, int ofSigner)
{
    QList<int> numbers;
    for (const BerValue &value : readBerList(content).value_or(QList<BerValue>()))
        numbers.append(value.whole.startsWith(sequenceTag) ? algorithmIn(value.content) : NID_undef);
    return std::all_of(numbers.begin(), numbers.end(), isDigest) && numbers.contains(ofSigner);
}

/// Whether a signature's algorithm is that of a key, by itself or together with the digest.
bool fits(int algorithm, int digest, const QByteArray &certificate)
{
    const Certificate leaf = certificateFrom(certificate);
    EVP_PKEY *key = leaf ? X509_get0_pubkey(leaf.get()) : nullptr;
    const int ofKey = key ? EVP_PKEY_get_base_id(key) : NID_undef;
    int combinedDigest = NID_undef;
    int combinedKey = NID_undef;
    const bool isCombined = OBJ_find_sigid_algs(algorithm, &combinedDigest, &combinedKey) == 1;
    return isCombined ? combinedDigest == digest && combinedKey == ofKey : algorithm == ofKey;
}

/// Whether the certificate's own signature fills its bytes. One that leaves out bits which are zero anyway
/// verifies all the same, so that the number of them could be changed unseen.
bool hasWholeSignature(const QByteArray &certificate)
{
    constexpr long unusedBits = 7; // of ASN1_STRING's flags, as <openssl/asn1.h> has them
    const Certificate leaf = certificateFrom(certificate);
    const ASN1_BIT_STRING *signature = nullptr;
    if (leaf)
        X509_get0_signature(&signature, nullptr, leaf.get());
    return signature && (signature->flags & unusedBits) == 0;
}

/// Issuer and serial number, byte for byte as in the certificate.
bool names(const QByteArray &content, const QByteArray &certificate)
{
    const Certificate leaf = certificateFrom(certificate);
    if (!leaf)
        return false;
    unsigned char *name = nullptr;
    unsigned char *number = nullptr;
    const int nameLength = i2d_X509_NAME(X509_get_issuer_name(leaf.get()), &name);
    const int numberLength = i2d_ASN1_INTEGER(X509_get0_serialNumber(leaf.get()), &number);
    const QByteArray expected = QByteArray(reinterpret_cast<const char *>(name), std::max(nameLength, 0))
        + QByteArray(reinterpret_cast<const char *>(number), std::max(numberLength, 0));
    OPENSSL_free(name);
    OPENSSL_free(number);
    return content == expected;
}

/// A time stamp is the one attribute that belongs here. Were any other let by, a changed letter of its name
/// would take the time stamp away unseen.
bool areUnsignedAttributes(const QByteArray &content)
{
    const auto list = readBerList(content);
    return list && std::all_of(list->begin(), list->end(), [](const BerValue &attribute) {
               Values values(attribute.content);
               values.takeExactly(timeStampTokenAttribute);
               Values tokens(values.contentOf(setTag));
               (void)tokens.take(sequenceTag);
               return attribute.whole.startsWith(sequenceTag) && values.isDone() && tokens.isDone();
           });
}

/// The digest that the signer says it took; undefined if the form is another.
int digestOfSigner(const QByteArray &content, const QByteArray &leaf)
{
    Values values(content);
    values.takeExactly(versionOne);
    bool isGood = names(values.contentOf(sequenceTag), leaf) && hasWholeSignature(leaf);
    const int digest = algorithmIn(values.contentOf(sequenceTag));
    values.skipAll(firstContext);
    isGood = fits(algorithmIn(values.contentOf(sequenceTag)), digest, leaf) && isGood;
    (void)values.take(octetsTag);
    if (values.isNext(secondContext))
        isGood = areUnsignedAttributes(values.contentOf(secondContext)) && isGood;
    return isGood && values.isDone() ? digest : NID_undef;
}

int digestOfOnlySigner(const QByteArray &content, const QByteArray &leaf)
{
    Values values(content);
    const auto signer = values.take(sequenceTag);
    return signer && values.isDone() ? digestOfSigner(signer->content, leaf) : NID_undef;
}

bool isContent(const QByteArray &content, CmsContent kind)
{
    Values values(content);
    values.takeExactly(kind == CmsContent::timeStamp ? timeStampType : dataType);
    if (kind == CmsContent::timeStamp)
        (void)values.take(firstContext);
    return values.isDone();
}

bool isSignedData(const QByteArray &content, const QByteArray &leaf, CmsContent kind)
{
    Values values(content);
    values.takeExactly(kind == CmsContent::timeStamp ? versionThree : versionOne);
    const QByteArray digests = values.contentOf(setTag);
    const bool isGood = isContent(values.contentOf(sequenceTag), kind);
    (void)values.take(firstContext);
    values.skipAll(secondContext); // revocation lists
    const int ofSigner = digestOfOnlySigner(values.contentOf(setTag), leaf);
    return isGood && areDigests(digests, ofSigner) && values.isDone();
}

} // namespace

QString objectionToForm(const QByteArray &cms, const QByteArray &leaf, CmsContent content)
{
    const auto outer = readBer(cms);
    Values values(outer && outer->whole.startsWith(sequenceTag) ? outer->content : QByteArray());
    values.takeExactly(signedDataType);
    Values inner(values.contentOf(firstContext));
    const bool isGood = isSignedData(inner.contentOf(sequenceTag), leaf, content);
    return isGood && inner.isDone() && values.isDone() ? QString()
                                                       : u"the form of the signature has been changed"_s;
}

} // namespace toolchain
