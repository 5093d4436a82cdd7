#include "platform/propertylist/propertylist.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QString sample(const QString &extension)
{
    return QStringLiteral(SEALWRIGHT_SAMPLES) + u"/Seal Sample."_s + extension;
}

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What a program of the host prints; empty if it fails.
QString outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    const bool isDone = process.waitForFinished() && process.exitCode() == 0;
    return isDone ? QString::fromUtf8(process.readAllStandardOutput()) : QString();
}

class SamplePlugins : public testing::TestWithParam<const char *> {
protected:
    const QString extension = QString::fromLatin1(GetParam());
    const QString contents = sample(extension) + u"/Contents/"_s;
};

INSTANTIATE_TEST_SUITE_P(Kinds, SamplePlugins, testing::Values("plugin", "fmplugin"),
                         [](const auto &row) { return std::string(row.param); });

TEST_P(SamplePlugins, haveAnIdentifierAndCodeOfTheirOwn)
{
    const QVariantMap information =
        platform::propertyListFromData(bytesOf(contents + u"Info.plist"_s)).valueOr({}).toMap();
    EXPECT_EQ(information.value(u"CFBundleIdentifier"_s).toString(), u"org.sealwright.sample."_s + extension);
    EXPECT_EQ(information.value(u"CFBundlePackageType"_s).toString(), u"BNDL"_s);
    const QString executable = contents + u"MacOS/"_s + information.value(u"CFBundleExecutable"_s).toString();
    const QString kind = outputOf(u"file"_s, {u"-b"_s, executable});
    EXPECT_TRUE(kind.startsWith(u"Mach-O universal binary with 2 architectures"_s)) << kind.toStdString();
    EXPECT_TRUE(kind.contains(u"arm64 bundle"_s)) << kind.toStdString();
}

TEST_P(SamplePlugins, bringALibraryAndAResource)
{
    const QString kind = outputOf(u"file"_s, {u"-b"_s, contents + u"Frameworks/libsample.dylib"_s});
    EXPECT_TRUE(kind.contains(u"dynamically linked shared library"_s)) << kind.toStdString();
    EXPECT_FALSE(bytesOf(contents + u"Resources/Read Me.txt"_s).isEmpty());
}

TEST(SamplePackage, holdsTheWholeAppInItsPayload)
{
    const QTemporaryDir folder;
    const QString archive = u"-o"_s + folder.path();
    ASSERT_TRUE(
        outputOf(u"7z"_s, {u"x"_s, u"-txar"_s, archive, sample(u"pkg"_s)}).contains(u"Everything is Ok"_s));
    EXPECT_TRUE(bytesOf(folder.filePath(u"PackageInfo"_s)).contains("org.sealwright.sample.pkg"));
    QProcess unpacking;
    unpacking.setWorkingDirectory(folder.path());
    unpacking.start(u"sh"_s, {u"-c"_s, u"7z x -tgzip -so Payload > cpio && 7z x -tcpio cpio"_s});
    ASSERT_TRUE(unpacking.waitForFinished());
    EXPECT_EQ(unpacking.exitCode(), 0);
    const QString path = u"/Contents/Frameworks/Greeting.framework/Versions/A/Greeting"_s;
    EXPECT_EQ(bytesOf(folder.filePath(u"Seal Sample.app"_s) + path),
              bytesOf(QStringLiteral(SEALWRIGHT_SAMPLE_APP) + path));
    EXPECT_TRUE(
        QFileInfo(folder.filePath(u"Seal Sample.app/Contents/Frameworks/Greeting.framework/Resources"_s))
            .isSymLink());
}

} // namespace
