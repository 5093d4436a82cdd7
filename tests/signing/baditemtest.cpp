// Items that no developer means to submit.

#include "support/steptest.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>

using namespace Qt::StringLiterals;

class BadItem : public StepTest {
protected:
    void submitAndExpectSuccess(const QString &name)
    {
        const QByteArray original = items::fingerprint(host.item(name));
        host.launch();
        host.submitToTheEnd(host.item(name));
        ASSERT_TRUE(host.window().sheet);
        EXPECT_EQ(host.window().sheet->alert.messageText, u"Stapling Successful"_s);
        EXPECT_EQ(items::fingerprint(host.item(u"Foo - Notarized/Foo - Unmodified Original/"_s + name)),
                  original);
    }
};

TEST_F(BadItem, aNameInsideThatIsNotUTF8DoesNotStopTheRun)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    const QByteArray name = QFile::encodeName(host.item(u"Foo.app/Contents/MacOS/"_s)) + "caf\xe9";
    const int file = open(name.constData(), O_WRONLY | O_CREAT, 0755);
    ASSERT_GE(file, 0);
    close(file);
    submitAndExpectSuccess(u"Foo.app"_s);
    std::filesystem::remove_all(host.item({}).toStdString()); // what the host's folder could not name
}

TEST_F(BadItem, anInformationDictionaryOfGarbageDoesNotStopTheWalk)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/P.plugin"_s));
    items::makeFile(host.item(u"Foo.app/Contents/PlugIns/P.plugin/Contents/Info.plist"_s),
                    QByteArray("bplist00\xff\xff\xff\x00", 12));
    submitAndExpectSuccess(u"Foo.app"_s);
    const auto lines = host.tools.callsOf(u"codesign"_s);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].last().endsWith(u"/P.plugin/Contents/MacOS/P"_s)); // code, but no main executable
}

TEST_F(BadItem, anExecutableNameThatLeadsOutOfTheBundleSignsNothingOutside)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    items::makeFile(host.item(u"outside"_s), items::machO(), true);
    items::makeInfo(host.item(u"Foo.app/Contents/PlugIns/P.plugin/Contents"_s),
                    u"../../../../../../outside"_s, u"com.example.p"_s);
    submitAndExpectSuccess(u"Foo.app"_s);
    for (const QStringList &line : host.tools.callsOf(u"codesign"_s))
        EXPECT_TRUE(line.last().startsWith(host.item(u"Foo - Working/Foo.app"_s)));
}

TEST_F(BadItem, anAppThatIsAnEmptyFolderHasNothingSignable)
{
    items::makeFolder(host.item(u"Foo.app"_s));
    host.launch();
    host.submit(host.item(u"Foo.app"_s));
    expectReport(u"Error Signing Code"_s, u"No signable items found."_s);
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    items::makeBundle(host.item(u"Foo.app"_s));
    expectUsableFor(u"Foo.app"_s);
}

TEST_F(BadItem, anAppThatIsAFileHasNothingSignable)
{
    items::makeFile(host.item(u"Foo.app"_s), "not a folder");
    host.launch();
    host.submit(host.item(u"Foo.app"_s));
    expectReport(u"Error Signing Code"_s, u"No signable items found."_s);
    EXPECT_EQ(host.text(u"Foo.app"_s), u"not a folder"_s);
}

TEST_F(BadItem, withoutASigningToolTheReasonIsReported)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    host.tools.remove(u"/usr/bin/codesign"_s);
    items::makeFile(host.tools.root() + u"/usr/bin/codesign"_s, "no program");
    host.launch();
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_TRUE(errorLine().startsWith(u"Error # in codesign: Cannot launch '"_s))
        << errorLine().toStdString();
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
}
