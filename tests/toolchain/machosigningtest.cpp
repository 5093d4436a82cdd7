// Signatures that are put into a file of code, and taken off.

#include "toolchain/signatureplan.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace toolchain::codesignature;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

class MachOSigning : public testing::Test {
protected:
    [[nodiscard]] QString file(const QByteArray &bytes) const
    {
        const QString path = m_folder.filePath(u"code"_s);
        writeFile(path, bytes);
        return path;
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(MachOSigning, leavesTheCodeAsItIsAndTheModeToo)
{
    const QByteArray before = bundlebuilder::thinMachO(bundlebuilder::x86_64);
    const QString path = file(before);
    ASSERT_EQ(chmod(qPrintable(path), 0751), 0);
    ASSERT_EQ(signMachO(path, {adHocPlan()}).error(), QString());
    const QByteArray behind = readFile(path);
    EXPECT_EQ(behind.mid(0x800, before.size() - 0x800), before.mid(0x800));
    struct stat status = {};
    ASSERT_EQ(stat(qPrintable(path), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0751U);
    EXPECT_FALSE(QFile::exists(path + u".cstemp"_s));
}

TEST_F(MachOSigning, setsAsideWhatTheEstimateSays)
{
    const QString path = file(bundlebuilder::thinMachO(bundlebuilder::arm64));
    const SignaturePlan plan = adHocPlan();
    ASSERT_EQ(signMachO(path, {plan}).error(), QString());
    const auto image = readMachOImage(path);
    ASSERT_TRUE(image);
    const MachOSlice &slice = image->slices.first();
    EXPECT_EQ(slice.signature->data.offset % 16, 0U);
    EXPECT_EQ(slice.signature->data.length, roomForSignature(plan, slice.signature->data.offset));
    EXPECT_EQ(slice.segment("__LINKEDIT")->file.end(), slice.place.length);
    EXPECT_EQ(slice.segment("__LINKEDIT")->virtualSize % 0x4000, 0U);
}

TEST_F(MachOSigning, takenOffAndMadeAnewIsTheSameByteForByte)
{
    for (const QByteArray &bytes :
         {bundlebuilder::universalMachO(), bundlebuilder::thinMachO(bundlebuilder::i386)}) {
        const QString path = file(bytes);
        const QList<SignaturePlan> plans(imageOf(bytes)->slices.size(), adHocPlan());
        ASSERT_EQ(signMachO(path, plans).error(), QString());
        const QByteArray first = readFile(path);
        ASSERT_EQ(stripMachO(path).error(), QString());
        EXPECT_FALSE(readSignedCode(path)->isSigned());
        ASSERT_EQ(signMachO(path, plans).error(), QString());
        EXPECT_EQ(readFile(path), first);
        ASSERT_EQ(signMachO(path, plans).error(), QString());
        EXPECT_EQ(readFile(path), first);
    }
}

TEST_F(MachOSigning, aHardLinkKeepsTheOldFile)
{
    const QByteArray before = bundlebuilder::thinMachO(bundlebuilder::arm64);
    const QString path = file(before);
    ASSERT_EQ(link(qPrintable(path), qPrintable(path + u"2"_s)), 0);
    ASSERT_EQ(signMachO(path, {adHocPlan()}).error(), QString());
    EXPECT_EQ(readFile(path + u"2"_s), before);
}

TEST_F(MachOSigning, aSignatureThatDoesNotFitIsRefusedAndTheFileStays)
{
    const QByteArray before = bundlebuilder::thinMachO(bundlebuilder::arm64);
    const QString path = file(before);
    SignaturePlan plan = adHocPlan();
    plan.makeCms = [](const QByteArray &, const QList<DirectoryDigest> &) {
        return platform::Result<QByteArray>(QByteArray(20'000, 'c'));
    };
    EXPECT_EQ(signMachO(path, {plan}).error(), text::tooLarge);
    plan.makeCms = [](const QByteArray &, const QList<DirectoryDigest> &) {
        return platform::Result<QByteArray>(platform::Error{u"no key"_s});
    };
    EXPECT_EQ(signMachO(path, {plan}).error(), u"no key"_s);
    EXPECT_EQ(readFile(path), before);
    EXPECT_FALSE(QFile::exists(path + u".cstemp"_s));
}

TEST_F(MachOSigning, aFileThatChangesMeanwhileIsNotReplaced)
{
    const QString path = file(bundlebuilder::thinMachO(bundlebuilder::arm64));
    SignaturePlan plan = adHocPlan();
    plan.makeCms = [&path](const QByteArray &, const QList<DirectoryDigest> &) {
        QFile other(path);
        EXPECT_TRUE(other.open(QIODevice::Append) && other.write("more") == 4);
        return platform::Result<QByteArray>(QByteArray("cms"));
    };
    EXPECT_TRUE(signMachO(path, {plan}).error().contains(u"was changed"_s));
    EXPECT_TRUE(readFile(path).endsWith("more"));
}
