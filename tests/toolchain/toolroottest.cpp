#include "platform/propertylist/propertylist.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

const QString developerFolder = u"/Applications/Xcode.app/Contents/Developer/usr/bin"_s;
const QString transporterTool =
    u"/Applications/TransporterApp.app/Contents/Frameworks/ITunesServices.framework/Frameworks/"
    "ITunesSoftwareService.framework/Support/altool"_s;

class ToolRoot : public ToolFixture {
protected:
    static QVariantMap infoOf(const QString &application)
    {
        const QString path = toolRoot() + u"/Applications/"_s + application + u"/Contents/Info.plist"_s;
        return platform::propertyListFromData(bundlebuilder::readFile(path)).valueOr({}).toMap();
    }

    static QStringList allTools()
    {
        QStringList tools{toolRoot() + transporterTool};
        for (const QString &folder : {u"/usr/bin"_s, u"/usr/sbin"_s, developerFolder}) {
            QDirIterator files(toolRoot() + folder, QDir::Files);
            while (files.hasNext())
                tools.append(files.next());
        }
        return tools;
    }
};

} // namespace

TEST_F(ToolRoot, holdsEveryToolWhereItIsLookedFor)
{
    for (const QString &tool :
         {codesign, ditto, u"/usr/bin/hdiutil"_s, u"/usr/bin/osascript"_s, u"/usr/bin/productsign"_s,
          security, spctl, xattr, xcrun, developerFolder + u"/altool"_s, developerFolder + u"/stapler"_s,
          transporterTool})
        EXPECT_TRUE(QFileInfo(toolRoot() + tool).isExecutable()) << tool.toStdString();
}

TEST_F(ToolRoot, everyToolHasHelpOnStandardOutput)
{
    const auto tools = allTools();
    EXPECT_GE(tools.size(), 10);
    for (const QString &tool : tools) {
        const ToolResult result = run(tool, {u"--help"_s});
        EXPECT_EQ(result.status, 0) << tool.toStdString();
        EXPECT_TRUE(result.output.contains(u"Usage: "_s + QFileInfo(tool).fileName())) << tool.toStdString();
        EXPECT_EQ(result.error, QString()) << tool.toStdString();
    }
}

TEST_F(ToolRoot, everyToolRefusesAnOptionThatItDoesNotKnow)
{
    for (const QString &tool : allTools()) {
        const ToolResult result = run(tool, {u"--no-such-option"_s});
        EXPECT_EQ(result.status, 2) << tool.toStdString(); // it may be one that is not built
        EXPECT_TRUE(result.error.contains(u"no-such-option"_s)) << tool.toStdString();
        EXPECT_EQ(result.output, QString()) << tool.toStdString();
    }
}

TEST_F(ToolRoot, applicationsBearTheirIdentifiersAndCanBeStarted)
{
    for (const auto &[application, identifier] :
         {std::pair(u"Xcode.app"_s, u"com.apple.dt.Xcode"_s),
          std::pair(u"TransporterApp.app"_s, u"com.apple.TransporterApp"_s)}) {
        const QVariantMap info = infoOf(application);
        EXPECT_EQ(info.value(u"CFBundleIdentifier"_s).toString(), identifier);
        EXPECT_EQ(info.value(u"CFBundlePackageType"_s).toString(), u"APPL"_s);
        const QString executable = toolRoot() + u"/Applications/"_s + application + u"/Contents/MacOS/"_s
            + info.value(u"CFBundleExecutable"_s).toString();
        const ToolResult result = run(executable, {});
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(result.output.contains(u"stand-in"_s));
    }
}

TEST_F(ToolRoot, worksWhenItIsCopiedElsewhere)
{
    ASSERT_EQ(QProcess::execute(u"cp"_s, {u"-a"_s, toolRoot(), path(u"copy"_s)}), 0);
    const ToolResult found = run(path(u"copy/usr/bin/xcrun"_s), {u"--find"_s, u"altool"_s});
    EXPECT_EQ(found.output, path(u"copy"_s) + developerFolder + u"/altool\n"_s);
    const ToolResult help = run(path(u"copy"_s) + transporterTool, {u"-h"_s});
    EXPECT_EQ(help.status, 0) << help.error.toStdString();
}

TEST_F(ToolRoot, xcrunHandsOverArgumentsAndStatus)
{
    const ToolResult result = run(xcrun, {u"stapler"_s, u"staple"_s, u"-v"_s, u"/no/such item.app"_s});
    EXPECT_EQ(result.status, 66);
    EXPECT_TRUE(result.error.contains(u"/no/such item.app"_s));
}

TEST_F(ToolRoot, xcrunFindsToolsBesideItself)
{
    EXPECT_EQ(run(xcrun, {u"-f"_s, u"ditto"_s}).output, toolRoot() + ditto + u'\n');
}

TEST_F(ToolRoot, xcrunKnowsNoToolOfThatName)
{
    for (const QString &name : {u"nonesuch"_s, u"../bin/ditto"_s, u".."_s, QString()}) {
        const ToolResult result = run(xcrun, {name});
        EXPECT_EQ(result.status, 72);
        EXPECT_EQ(
            result.error,
            u"xcrun: error: unable to find utility \"%1\", not a developer tool or in PATH\n"_s.arg(name));
    }
}

TEST_F(ToolRoot, altoolTellsItsVersionInOneLine)
{
    const QString help = run(xcrun, {u"altool"_s, u"-h"_s}).output;
    const QRegularExpression banner(u"Copyright .+? Apple .+ Version +(\\d+)\\.(\\d+).(\\d+)"_s);
    EXPECT_EQ(banner.match(help).captured(1), u"4"_s);
    EXPECT_TRUE(help.contains(u"not Apple's program"_s));
}
