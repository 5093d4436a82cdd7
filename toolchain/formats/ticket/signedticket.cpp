#include "formats/ticket/signedticket.h"

#include <QtEndian>

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace toolchain::ticket {

namespace {

constexpr QByteArrayView ticketMagic = "s8ch";
constexpr QByteArrayView bodyMagic = "g8tk";
constexpr qsizetype headSize = 16; // bytes: magic, version, lengths of certificates and body
constexpr qsizetype bodyHeadSize = 24; // magic, version, length of a hash, count, flags, time
constexpr qsizetype hashSize = 20;
constexpr qsizetype entrySize = hashSize + 1;
constexpr qsizetype signatureRoom = 72; // the longest ECDSA signature over P-256 in DER form
constexpr quint16 bodyVersion = 2;
constexpr qsizetype mostCertificates = 8;

struct FreeCertificate {
    void operator()(X509 *certificate) const { X509_free(certificate); }
};
using Certificate = std::unique_ptr<X509, FreeCertificate>;

struct FreeDigestContext {
    void operator()(EVP_MD_CTX *context) const { EVP_MD_CTX_free(context); }
};
using DigestContext = std::unique_ptr<EVP_MD_CTX, FreeDigestContext>;

const unsigned char *unsignedBytes(QByteArrayView bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.data());
}

template <typename Number>
Number littleEndianAt(QByteArrayView bytes, qsizetype offset)
{
    return qFromLittleEndian<Number>(bytes.data() + offset);
}

template <typename Number>
void appendLittleEndian(QByteArray &bytes, Number number)
{
    const Number swapped = qToLittleEndian(number);
    bytes.append(reinterpret_cast<const char *>(&swapped), sizeof swapped);
}

/// The length of the DER element at the beginning, header included; 0 if it does not lie within the bytes.
qsizetype elementLength(QByteArrayView bytes)
{
    const unsigned char *at = unsignedBytes(bytes);
    long length = 0;
    int tag = 0;
    int tagClass = 0;
    const int outcome = ASN1_get_object(&at, &length, &tag, &tagClass, long(bytes.size()));
    const bool isSequence = (outcome & 0x80) == 0 && (outcome & 1) == 0 && tag == V_ASN1_SEQUENCE;
    return isSequence ? at - unsignedBytes(bytes) + length : 0;
}

/// The elements of a DER sequence that fills the bytes; empty if they are none.
QList<QByteArray> elementsOf(QByteArrayView bytes)
{
    const unsigned char *at = unsignedBytes(bytes);
    long length = 0;
    int tag = 0;
    int tagClass = 0;
    if (elementLength(bytes) != bytes.size()
        || (ASN1_get_object(&at, &length, &tag, &tagClass, long(bytes.size())) & 0x80) != 0)
        return {};
    QByteArrayView rest = bytes.last(length);
    QList<QByteArray> elements;
    while (!rest.isEmpty() && elements.size() < mostCertificates) {
        const qsizetype next = elementLength(rest);
        if (next == 0)
            return {};
        elements.append(rest.first(next).toByteArray());
        rest = rest.sliced(next);
    }
    return rest.isEmpty() ? elements : QList<QByteArray>();
}

Certificate certificateFrom(const QByteArray &der)
{
    const unsigned char *at = unsignedBytes(der);
    return Certificate(d2i_X509(nullptr, &at, long(der.size())));
}

platform::Result<QList<TicketEntry>> readEntries(QByteArrayView body)
{
    const auto count = littleEndianAt<quint32>(body, 8);
    if (quint64(body.size()) != bodyHeadSize + quint64(count) * entrySize)
        return platform::Error{u"the ticket's entries do not fill its body"_s};
    QList<TicketEntry> entries;
    for (qsizetype at = bodyHeadSize; at < body.size(); at += entrySize)
        entries.append({quint8(body[at]), body.sliced(at + 1, hashSize).toByteArray()});
    return entries;
}

platform::Result<SignedTicket> readBody(QByteArrayView body, SignedTicket ticket)
{
    const bool isKnown = body.size() >= bodyHeadSize && body.startsWith(bodyMagic)
        && littleEndianAt<quint16>(body, 4) == bodyVersion && littleEndianAt<quint16>(body, 6) == hashSize;
    if (!isKnown)
        return platform::Error{u"the ticket's body has an unknown form"_s};
    const auto entries = readEntries(body);
    if (!entries)
        return entries.failure();
    ticket.entries = *entries;
    ticket.flags = littleEndianAt<quint32>(body, 12);
    ticket.issued =
        QDateTime::fromSecsSinceEpoch(qint64(littleEndianAt<quint64>(body, 16) & 0xff'ffff'ffffULL), Qt::UTC);
    return ticket;
}

QByteArray bodyOf(const QList<TicketEntry> &entries, const QDateTime &issued)
{
    QByteArray body = bodyMagic.toByteArray();
    appendLittleEndian(body, bodyVersion);
    appendLittleEndian(body, quint16(hashSize));
    appendLittleEndian(body, quint32(entries.size()));
    appendLittleEndian(body, quint32(0));
    appendLittleEndian(body, quint64(issued.toSecsSinceEpoch()));
    for (const TicketEntry &entry : entries) {
        body += char(entry.hashType);
        body += entry.hash;
    }
    return body;
}

QByteArray sequenceOf(const QList<QByteArray> &elements)
{
    const QByteArray content = elements.join();
    QByteArray result(ASN1_object_size(1, int(content.size()), V_ASN1_SEQUENCE) - content.size(), '\0');
    auto *at = reinterpret_cast<unsigned char *>(result.data());
    ASN1_put_object(&at, 1, int(content.size()), V_ASN1_SEQUENCE, V_ASN1_UNIVERSAL);
    return result + content;
}

/// ECDSA over SHA-256 in DER form; empty if the key does not sign.
QByteArray signatureOf(QByteArrayView bytes, EVP_PKEY *key)
{
    const DigestContext context(EVP_MD_CTX_new());
    std::size_t length = 0;
    if (EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, key) != 1
        || EVP_DigestSign(context.get(), nullptr, &length, unsignedBytes(bytes), std::size_t(bytes.size()))
            != 1)
        return {};
    QByteArray signature(qsizetype(length), '\0');
    const int outcome = EVP_DigestSign(context.get(), reinterpret_cast<unsigned char *>(signature.data()),
                                       &length, unsignedBytes(bytes), std::size_t(bytes.size()));
    return outcome == 1 ? signature.first(qsizetype(length)) : QByteArray();
}

} // namespace

QString TicketEntry::recordName() const
{
    return u"2/%1/%2"_s.arg(hashType).arg(QString::fromLatin1(hash.toHex()));
}

bool SignedTicket::isSignatureGood() const
{
    const Certificate signer = certificates.isEmpty() ? nullptr : certificateFrom(certificates.first());
    EVP_PKEY *key = signer ? X509_get0_pubkey(signer.get()) : nullptr;
    if (key == nullptr || EVP_PKEY_get_base_id(key) != EVP_PKEY_EC)
        return false;
    const DigestContext context(EVP_MD_CTX_new());
    return EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr, key) == 1
        && EVP_DigestVerify(context.get(), unsignedBytes(signature), std::size_t(signature.size()),
                            unsignedBytes(signedBytes), std::size_t(signedBytes.size()))
        == 1;
}

bool looksLikeTicket(QByteArrayView bytes)
{
    return bytes.startsWith(ticketMagic);
}

platform::Result<SignedTicket> readTicket(const QByteArray &bytes)
{
    if (bytes.size() < headSize || !looksLikeTicket(bytes) || littleEndianAt<quint32>(bytes, 4) != 1)
        return platform::Error{u"it is no ticket of a known form"_s};
    const quint64 certificateLength = littleEndianAt<quint32>(bytes, 8);
    const quint64 bodyLength = littleEndianAt<quint32>(bytes, 12);
    const quint64 signedLength = headSize + certificateLength + bodyLength;
    if (signedLength > quint64(bytes.size()))
        return platform::Error{u"the ticket is cut short"_s};
    SignedTicket ticket;
    ticket.certificates = elementsOf(QByteArrayView(bytes).sliced(headSize, qsizetype(certificateLength)));
    ticket.signedBytes = bytes.first(qsizetype(signedLength));
    const QByteArrayView rest = QByteArrayView(bytes).sliced(qsizetype(signedLength));
    ticket.signature = rest.first(elementLength(rest)).toByteArray();
    if (ticket.certificates.isEmpty() || ticket.signature.isEmpty())
        return platform::Error{u"the ticket has no certificate or no signature"_s};
    // Nothing vouches for what is behind the signature, so nothing may be there but what fills its place.
    const QByteArrayView filling = rest.sliced(ticket.signature.size());
    if (std::any_of(filling.begin(), filling.end(), [](char byte) { return byte != '\0'; }))
        return platform::Error{u"there is something behind the ticket"_s};
    const auto body = QByteArrayView(ticket.signedBytes).last(qsizetype(bodyLength));
    return readBody(body, ticket);
}

platform::Result<QByteArray> mintTicket(const QList<TicketEntry> &entries, const QDateTime &issued,
                                        const QList<QByteArray> &certificates, EVP_PKEY *key)
{
    for (const TicketEntry &entry : entries) {
        if (entry.hash.size() != hashSize)
            return platform::Error{u"a ticket's entries are hashes of 20 bytes"_s};
    }
    const QByteArray chain = sequenceOf(certificates);
    const QByteArray body = bodyOf(entries, issued);
    QByteArray ticket = ticketMagic.toByteArray();
    appendLittleEndian(ticket, quint32(1));
    appendLittleEndian(ticket, quint32(chain.size()));
    appendLittleEndian(ticket, quint32(body.size()));
    ticket += chain + body;
    const QByteArray signature = signatureOf(ticket, key);
    if (signature.isEmpty() || signature.size() > signatureRoom)
        return platform::Error{u"the key cannot sign tickets"_s};
    return ticket + signature.leftJustified(signatureRoom, '\0');
}

} // namespace toolchain::ticket
