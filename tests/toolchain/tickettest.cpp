#include "formats/ticket/signedticket.h"
#include "toolchain/bundlebuilder.h"

#include <gtest/gtest.h>

#include <QtEndian>

#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>

using namespace Qt::StringLiterals;
using namespace toolchain;
using ticket::TicketEntry;

namespace {

/// The ticket that Apple's tools have stapled to a real package.
QByteArray applesTicket()
{
    const QByteArray package = bundlebuilder::readFile(QStringLiteral(PACKAGE_FILE));
    const auto length = qFromLittleEndian<quint32>(package.constData() + package.size() - 8);
    return package.chopped(16).last(qsizetype(length));
}

struct Signer {
    std::unique_ptr<EVP_PKEY, void (*)(EVP_PKEY *)> key{EVP_EC_gen("P-256"), EVP_PKEY_free};
    QByteArray certificate = makeCertificate();

    [[nodiscard]] QByteArray makeCertificate() const
    {
        const std::unique_ptr<X509, void (*)(X509 *)> made(X509_new(), X509_free);
        X509_gmtime_adj(X509_getm_notBefore(made.get()), 0);
        X509_gmtime_adj(X509_getm_notAfter(made.get()), 3600);
        X509_set_pubkey(made.get(), key.get());
        X509_sign(made.get(), key.get(), EVP_sha256());
        unsigned char *der = nullptr;
        const int length = i2d_X509(made.get(), &der);
        const QByteArray bytes(reinterpret_cast<const char *>(der), length);
        OPENSSL_free(der);
        return bytes;
    }
};

const QList<TicketEntry> entries{{2, QByteArray(20, 'a')}, {1, QByteArray(20, 'b')}};
const QDateTime moment = QDateTime::fromSecsSinceEpoch(1'700'000'000, Qt::UTC);

QByteArray mint(const Signer &signer)
{
    const auto bytes =
        ticket::mintTicket(entries, moment, {signer.certificate, signer.certificate}, signer.key.get());
    EXPECT_TRUE(bytes) << bytes.error().toStdString();
    return bytes ? *bytes : QByteArray();
}

} // namespace

TEST(Tickets, oneOfApplesIsReadAndItsSignatureIsGood)
{
    const QByteArray bytes = applesTicket();
    const auto read = ticket::readTicket(bytes);
    ASSERT_TRUE(read) << read.error().toStdString();
    EXPECT_TRUE(read->isSignatureGood());
    EXPECT_EQ(read->certificates.size(), 2);
    EXPECT_EQ(read->entries.size(), 7);
    EXPECT_EQ(read->entries[0].recordName(), u"2/1/d3ec39419fe578ba9651704ec98140fbff0684a7"_s);
    EXPECT_EQ(read->entries[1].recordName(), u"2/2/78182a54a0605598814dbe3be50d3d738722a121"_s);
    EXPECT_EQ(read->issued, QDateTime(QDate(2026, 6, 17), QTime(12, 7, 35), Qt::UTC));
    EXPECT_EQ(read->flags, 0U);
}

TEST(Tickets, aMintedOneHasTheFormOfApples)
{
    const Signer signer;
    const QByteArray bytes = mint(signer);
    const QByteArray apples = applesTicket();
    EXPECT_EQ(bytes.first(8), apples.first(8));
    EXPECT_EQ(bytes.size(),
              16 + qsizetype(qFromLittleEndian<quint32>(bytes.constData() + 8)) + 24 + 2 * 21 + 72);
    const auto read = ticket::readTicket(bytes);
    ASSERT_TRUE(read) << read.error().toStdString();
    EXPECT_TRUE(read->isSignatureGood());
    EXPECT_EQ(read->entries, entries);
    EXPECT_EQ(read->issued, moment);
    EXPECT_EQ(read->certificates, (QList<QByteArray>{signer.certificate, signer.certificate}));
    EXPECT_TRUE(read->vouchesFor(entries[1]));
    EXPECT_FALSE(read->vouchesFor({1, entries[0].hash}));
}

TEST(Tickets, everyChangedByteBeforeTheSignaturesEndIsNoticed)
{
    const QByteArray bytes = applesTicket();
    for (qsizetype place = 0; place < bytes.size() - 1; place += 3) {
        QByteArray changed = bytes;
        changed[place] = char(changed[place] ^ 0x10);
        const auto read = ticket::readTicket(changed);
        EXPECT_FALSE(read && read->isSignatureGood()) << place;
    }
}

TEST(Tickets, oneThatIsCutShortIsNone)
{
    const QByteArray bytes = applesTicket();
    for (qsizetype length = 0; length < bytes.size() - 8; length += 5)
        EXPECT_FALSE(ticket::readTicket(bytes.first(length))) << length;
    EXPECT_FALSE(ticket::readTicket("{\"note\": \"JSON\"}                    "));
}

TEST(Tickets, lengthsThatReachBeyondTheBytesAreRefused)
{
    for (const qsizetype field : {8, 12}) {
        QByteArray bytes = applesTicket();
        qToLittleEndian<quint32>(0xfffffff0, bytes.data() + field);
        EXPECT_FALSE(ticket::readTicket(bytes)) << field;
    }
}

TEST(Tickets, aHashOfAnotherLengthIsNotMinted)
{
    const Signer signer;
    EXPECT_FALSE(
        ticket::mintTicket({{2, QByteArray(32, 'a')}}, moment, {signer.certificate}, signer.key.get()));
}
