// Every change of what a signature covers.

#include "toolchain/codeverifytest.h"

#include <QFileInfo>

#include <random>

using namespace Qt::StringLiterals;
using namespace toolchain;
using namespace toolchain::codesignature;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

TEST_F(CodeVerify, everySingleChangeInACoveredByteIsFound)
{
    ASSERT_EQ(sign(app()).status, 0);
    ASSERT_TRUE(isFine(judge(app())));
    const QStringList files = coveredbytes::filesBelow(app());
    QMap<QString, QList<ByteRange>> holes;
    for (const QString &file : files)
        holes.insert(file, coveredbytes::uncovered(file));
    std::mt19937 random(20260117);
    int changes = 0;
    while (changes < 1000) {
        const QString &file = files[qsizetype(random() % quint32(files.size()))];
        const quint64 offset = random() % quint64(std::max<qint64>(QFileInfo(file).size(), 1));
        const bool isLeftOut = file.endsWith(u".DS_Store"_s) || !coveredbytes::isCovered(holes[file], offset);
        if (isLeftOut)
            continue;
        ++changes;
        flipByteAt(file, qint64(offset));
        ASSERT_FALSE(isFine(judge(app()))) << file.toStdString() << " at " << offset;
        flipByteAt(file, qint64(offset));
    }
    EXPECT_TRUE(isFine(judge(app())));
}

TEST_F(CodeVerify, aChangedCertificateInAnySliceIsFound)
{
    ASSERT_EQ(sign(app()).status, 0);
    const auto code = readCodeSignature(app());
    ASSERT_TRUE(code);
    for (qsizetype slice = 0; slice < code->parts.size(); ++slice) {
        const auto cms = readCms(code->parts[slice].cms());
        ASSERT_TRUE(cms);
        const auto from = qsizetype(code->image->slices[slice].place.offset);
        for (const QByteArray &certificate : cms->certificates) {
            const qsizetype at = readFile(executable()).indexOf(certificate, from);
            ASSERT_GT(at, from);
            flipByteAt(executable(), at + certificate.size() - 1);
            EXPECT_FALSE(isFine(judge(app()))) << slice << ' ' << at;
            flipByteAt(executable(), at + certificate.size() - 1);
        }
    }
    EXPECT_TRUE(isFine(judge(app())));
}

TEST_F(CodeVerify, aCodeDirectoryThatHasBeenTakenOutOfTheIndexIsMissed)
{
    writeFile(path(u"code"_s), bundlebuilder::thinMachO(bundlebuilder::arm64));
    ASSERT_EQ(sign(path(u"code"_s)).status, 0);
    const QByteArray bytes = readFile(path(u"code"_s));
    const qsizetype alternate =
        bytes.indexOf(QByteArray::fromHex("00001000"), bytes.indexOf(QByteArray::fromHex("fade0cc0")));
    ASSERT_GT(alternate, 0);
    flipByteAt(path(u"code"_s), alternate + 2);
    EXPECT_FALSE(isFine(judge(path(u"code"_s))));
}

TEST_F(CodeVerify, changesWithinTheCmsSignatureAreFoundWhereItsSignerVouches)
{
    writeFile(path(u"code"_s), bundlebuilder::thinMachO(bundlebuilder::arm64));
    ASSERT_EQ(sign(path(u"code"_s)).status, 0);
    const auto code = readCodeSignature(path(u"code"_s));
    ASSERT_TRUE(code);
    const auto cms = readCms(code->native().cms());
    ASSERT_TRUE(cms);
    const QByteArray file = readFile(path(u"code"_s));
    for (const QByteArray &covered : {cms->value, cms->messageDigest}) {
        const qsizetype at = file.indexOf(covered);
        ASSERT_GT(at, 0);
        for (qsizetype offset = 0; offset < covered.size(); offset += 7) {
            flipByteAt(path(u"code"_s), at + offset);
            EXPECT_FALSE(isFine(judge(path(u"code"_s)))) << offset;
            flipByteAt(path(u"code"_s), at + offset);
        }
    }
}
