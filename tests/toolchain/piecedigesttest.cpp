// The digests of what is about to be uploaded.

#include "formats/notary/piecedigest.h"

#include <QCryptographicHash>
#include <QRandomGenerator>
#include <QTemporaryFile>

#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;
using toolchain::notary::FilePiece;
using toolchain::notary::sha256Of;

namespace {

constexpr qint64 mebibyte = 1 << 20;

class PieceDigest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_file.open()); }

    /// Bytes that nobody foresees.
    [[nodiscard]] QByteArray fill(qint64 length)
    {
        QByteArray bytes(length, '\0');
        QRandomGenerator::global()->generate(bytes.begin(), bytes.end());
        EXPECT_EQ(m_file.write(bytes), length);
        EXPECT_TRUE(m_file.flush());
        return bytes;
    }
    [[nodiscard]] FilePiece piece(qint64 offset, qint64 length) const
    {
        return {m_file.handle(), offset, length};
    }

private:
    QTemporaryFile m_file;
};

QByteArray expected(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

} // namespace

TEST_F(PieceDigest, isThatOfTheBytesWhereverTheyLie)
{
    const QByteArray bytes = fill(9 * mebibyte + 7);
    for (const auto &[offset, length] :
         {std::pair(0 * mebibyte, bytes.size()), std::pair(0 * mebibyte, 1LL),
          std::pair(4 * mebibyte, 4 * mebibyte), std::pair(3 * mebibyte, bytes.size() - 3 * mebibyte)})
        EXPECT_EQ(sha256Of(piece(offset, length)).valueOr({}), expected(bytes.mid(offset, length)));
}

TEST_F(PieceDigest, isNotHadOfAFileThatHasBecomeShorter)
{
    (void)fill(5000);
    struct sigaction before = {};
    ASSERT_EQ(sigaction(SIGBUS, nullptr, &before), 0);
    for (const qint64 length : {5 * mebibyte, 4 * mebibyte + 5000}) {
        const auto digest = sha256Of(piece(0, length));
        EXPECT_FALSE(digest);
        EXPECT_EQ(digest.error(), u"it became shorter while it was being read"_s);
    }
    struct sigaction now = {};
    ASSERT_EQ(sigaction(SIGBUS, nullptr, &now), 0);
    EXPECT_EQ(now.sa_handler, before.sa_handler) << "the signal is left to those who had it before";
}

TEST(PieceDigests, areHadOfWhatCannotBeLookedAtInPlace)
{
    QFile file(u"/proc/version"_s);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    EXPECT_EQ(sha256Of({file.handle(), 0, bytes.size()}).valueOr({}), expected(bytes));
    EXPECT_EQ(sha256Of({file.handle(), 0, bytes.size() + 1}).error(),
              u"it became shorter while it was being read"_s);
}
