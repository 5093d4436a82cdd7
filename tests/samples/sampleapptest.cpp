#include "platform/propertylist/propertylist.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <gtest/gtest.h>

#include <filesystem>

using namespace Qt::StringLiterals;

namespace {

const QString app = QStringLiteral(SEALWRIGHT_SAMPLE_APP);
const QString framework = u"Contents/Frameworks/Greeting.framework/"_s;

QString inApp(const QString &path)
{
    return app + u'/' + path;
}

QByteArray contents(const QString &path)
{
    QFile file(inApp(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What the file tool says of a file in the app; empty if the tool could not be run.
QString kindOf(const QString &path)
{
    QProcess file;
    file.start(u"file"_s, {u"-b"_s, inApp(path)});
    file.waitForFinished();
    return QString::fromUtf8(file.readAllStandardOutput());
}

QString linkTarget(const QString &path)
{
    std::error_code error;
    return QString::fromStdString(std::filesystem::read_symlink(inApp(path).toStdString(), error).string());
}

struct Code {
    const char *name;
    QString path;
    QString kind;
};

class SampleCode : public testing::TestWithParam<Code> { };

INSTANTIATE_TEST_SUITE_P(
    Places, SampleCode,
    testing::Values(
        Code{"main", u"Contents/MacOS/Seal Sample"_s, u"executable"_s},
        Code{"library", u"Contents/Frameworks/libsample.dylib"_s, u"dynamically linked shared library"_s},
        Code{"framework", framework + u"Versions/A/Greeting"_s, u"dynamically linked shared library"_s},
        Code{"helper", framework + u"Versions/A/Helpers/Helper.app/Contents/MacOS/Helper"_s, u"executable"_s},
        Code{"plugin", u"Contents/PlugIns/Extra.plugin/Contents/MacOS/Extra"_s, u"bundle"_s}),
    [](const auto &row) { return row.param.name; });

TEST_P(SampleCode, isUniversalAndOfItsKind)
{
    const QString kind = kindOf(GetParam().path);
    EXPECT_TRUE(kind.startsWith(u"Mach-O universal binary with 2 architectures"_s)) << kind.toStdString();
    EXPECT_TRUE(kind.contains(u"Mach-O 64-bit x86_64 "_s + GetParam().kind)) << kind.toStdString();
    EXPECT_TRUE(kind.contains(u"Mach-O 64-bit arm64 "_s + GetParam().kind)) << kind.toStdString();
}

TEST_P(SampleCode, isExecutable)
{
    EXPECT_TRUE(QFileInfo(inApp(GetParam().path)).isExecutable());
}

struct SampleBundle {
    const char *name;
    QString information;
    QString codeFolder;
    QString identifier;
    QString packageType;
};

class SampleBundles : public testing::TestWithParam<SampleBundle> { };

INSTANTIATE_TEST_SUITE_P(
    Bundles, SampleBundles,
    testing::Values(SampleBundle{"app", u"Contents/Info.plist"_s, u"Contents/MacOS/"_s,
                                 u"org.sealwright.sample"_s, u"APPL"_s},
                    SampleBundle{"framework", framework + u"Resources/Info.plist"_s, framework,
                                 u"org.sealwright.sample.greeting"_s, u"FMWK"_s},
                    SampleBundle{"helper", framework + u"Versions/A/Helpers/Helper.app/Contents/Info.plist"_s,
                                 framework + u"Versions/A/Helpers/Helper.app/Contents/MacOS/"_s,
                                 u"org.sealwright.sample.helper"_s, u"APPL"_s},
                    SampleBundle{"plugin", u"Contents/PlugIns/Extra.plugin/Contents/Info.plist"_s,
                                 u"Contents/PlugIns/Extra.plugin/Contents/MacOS/"_s,
                                 u"org.sealwright.sample.extra"_s, u"BNDL"_s}),
    [](const auto &row) { return row.param.name; });

TEST_P(SampleBundles, tellWhatTheyAre)
{
    const auto list = platform::propertyListFromData(contents(GetParam().information));
    ASSERT_TRUE(list) << list.error().toStdString();
    const QVariantMap information = list->toMap();
    EXPECT_EQ(information.value(u"CFBundleIdentifier"_s).toString(), GetParam().identifier);
    EXPECT_EQ(information.value(u"CFBundlePackageType"_s).toString(), GetParam().packageType);
}

TEST_P(SampleBundles, nameAnExecutableThatIsThere)
{
    const auto list = platform::propertyListFromData(contents(GetParam().information));
    const QString executable = list->toMap().value(u"CFBundleExecutable"_s).toString();
    EXPECT_TRUE(QFileInfo(inApp(GetParam().codeFolder + executable)).isFile()) << executable.toStdString();
}

TEST(SampleApp, keepsTheRelativeLinksOfAVersionedFramework)
{
    EXPECT_EQ(linkTarget(framework + u"Versions/Current"_s), u"A"_s);
    EXPECT_EQ(linkTarget(framework + u"Greeting"_s), u"Versions/Current/Greeting"_s);
    EXPECT_EQ(linkTarget(framework + u"Resources"_s), u"Versions/Current/Resources"_s);
}

TEST(SampleApp, holdsEveryKindOfResource)
{
    EXPECT_EQ(linkTarget(u"Contents/Resources/Link.txt"_s), u"Read Me.txt"_s);
    EXPECT_EQ(contents(u"Contents/Resources/Link.txt"_s), contents(u"Contents/Resources/Read Me.txt"_s));
    EXPECT_TRUE(QFileInfo(inApp(u"Contents/Resources/greet.sh"_s)).isExecutable());
    EXPECT_FALSE(QFileInfo(inApp(u"Contents/Resources/Read Me.txt"_s)).isExecutable());
    EXPECT_FALSE(contents(u"Contents/Resources/Scripts/main.scpt"_s).isEmpty());
    const auto strings =
        platform::propertyListFromData(contents(u"Contents/Resources/en.lproj/InfoPlist.strings"_s));
    EXPECT_EQ(strings.valueOr({}).toMap().value(u"CFBundleDisplayName"_s).toString(), u"Seal Sample"_s)
        << strings.error().toStdString();
}

} // namespace
