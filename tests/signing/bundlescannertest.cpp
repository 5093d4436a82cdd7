// The walk through a bundle that decides what is signed on its own.

#include "signing/scantest.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

class BundleScan : public ScanTest { };

TEST_F(BundleScan, anAppWithNothingNestedIsAllThatIsSigned)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    walk(u"Foo.app"_s);
    EXPECT_EQ(discovered(), (QStringList{u"Foo.app"_s, u"Foo.app/Contents/MacOS/Foo"_s}));
    EXPECT_EQ(subtracted(), QStringList{u"Foo.app/Contents/MacOS/Foo"_s});
    EXPECT_EQ(members(), QStringList{u"Foo.app"_s});
}

TEST_F(BundleScan, aFolderWithoutAnExtensionIsNeverSignedItself)
{
    items::makeBundle(host.item(u"Foo"_s)); // all that a bundle has but the extension
    items::makeBundle(host.item(u"Foo/Contents/PlugIns/Bar.plugin"_s));
    walk(u"Foo"_s);
    EXPECT_EQ(sortedMembers(),
              (QStringList{u"Foo/Contents/MacOS/Foo"_s, u"Foo/Contents/PlugIns/Bar.plugin"_s}));
    EXPECT_EQ(subtracted(), QStringList{u"Foo/Contents/PlugIns/Bar.plugin/Contents/MacOS/Bar"_s});
}

TEST_F(BundleScan, aBundleWhoseExecutableIsMissingIsOnlyWalked)
{
    items::makeInfo(host.item(u"Foo.app/Contents"_s), u"Gone"_s, u"com.example.foo"_s);
    makeCode(u"Foo.app/Contents/Resources/helper"_s);
    walk(u"Foo.app"_s);
    EXPECT_EQ(discovered(), QStringList{u"Foo.app/Contents/Resources/helper"_s});
    EXPECT_EQ(subtracted(), QStringList());
}

TEST_F(BundleScan, aFolderWithAnExtensionAndNoDictionaryIsOnlyWalked)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    makeCode(u"Foo.app/Contents/Resources/en.lproj/tool"_s);
    walk(u"Foo.app"_s);
    EXPECT_EQ(sortedMembers(), (QStringList{u"Foo.app"_s, u"Foo.app/Contents/Resources/en.lproj/tool"_s}));
}

TEST_F(BundleScan, aBundleIsOneWhateverItsExtension)
{
    items::makeBundle(host.item(u"Foo.APP"_s));
    items::makeBundle(host.item(u"Foo.APP/Contents/XPCServices/Bar.xpc"_s));
    items::makeBundle(host.item(u"Foo.APP/Contents/Other/Baz.anything"_s));
    walk(u"Foo.APP"_s);
    EXPECT_EQ(sortedMembers(),
              (QStringList{u"Foo.APP"_s, u"Foo.APP/Contents/Other/Baz.anything"_s,
                           u"Foo.APP/Contents/XPCServices/Bar.xpc"_s}));
}

TEST_F(BundleScan, aDictionaryThatCannotBeReadMakesNoBundle)
{
    items::makeFile(host.item(u"Foo.app/Contents/Info.plist"_s), QByteArray("\xff\xfe\x00garbage", 10));
    makeCode(u"Foo.app/Contents/MacOS/Foo"_s);
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{u"Foo.app/Contents/MacOS/Foo"_s});
    EXPECT_EQ(subtracted(), QStringList());
}

TEST_F(BundleScan, anExecutableThatIsNoTextMakesNoBundle)
{
    items::makeFile(
        host.item(u"Foo.app/Contents/Info.plist"_s),
        "<plist><dict><key>CFBundleExecutable</key><array><string>Foo</string></array></dict></plist>");
    makeCode(u"Foo.app/Contents/MacOS/Foo"_s);
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{u"Foo.app/Contents/MacOS/Foo"_s});
}

TEST_F(BundleScan, aFlowIsSignedAlsoInsideAFolderOfThatExtension)
{
    items::makeFile(host.item(u"Foo.app/Contents/Resources/Do.wflow/Contents/document.wflow"_s), "<plist/>");
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{u"Foo.app/Contents/Resources/Do.wflow/Contents/document.wflow"_s});
}

TEST_F(BundleScan, aFolderThatEndsInDylibIsDescendedInto)
{
    makeCode(u"Foo.app/Contents/lib.dylib/tool"_s);
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{u"Foo.app/Contents/lib.dylib/tool"_s});
}

TEST_F(BundleScan, aFolderOfFlowsThatIsABundleIsSigned)
{
    items::makeBundle(host.item(u"Foo.app/Contents/Resources/Do.wflow"_s));
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{u"Foo.app/Contents/Resources/Do.wflow"_s});
}

TEST_F(BundleScan, aLinkToALibraryIsSignedBesideTheLibrary)
{
    items::makeFile(host.item(u"Foo.app/Contents/Frameworks/libx.1.dylib"_s), "not looked at");
    items::makeLink(host.item(u"Foo.app/Contents/Frameworks/libx.DYLIB"_s), u"libx.1.dylib"_s);
    walk(u"Foo.app"_s);
    EXPECT_EQ(sortedMembers(),
              (QStringList{u"Foo.app/Contents/Frameworks/libx.1.dylib"_s,
                           u"Foo.app/Contents/Frameworks/libx.DYLIB"_s}));
}

TEST_F(BundleScan, aLinkToCodeIsNotSigned)
{
    makeCode(u"Foo.app/Contents/MacOS/tool"_s);
    items::makeLink(host.item(u"Foo.app/Contents/MacOS/alias"_s), u"tool"_s);
    items::makeLink(host.item(u"Foo.app/Contents/Folder"_s), u"MacOS"_s);
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{u"Foo.app/Contents/MacOS/tool"_s});
}

TEST_F(BundleScan, aShellScriptThatIsExecutableIsNotSigned)
{
    makeCode(u"Foo.app/Contents/MacOS/run"_s, "#!/bin/sh\nexit 0\n");
    walk(u"Foo.app"_s);
    EXPECT_EQ(discovered(), QStringList());
}

TEST_F(BundleScan, codeThatIsNotExecutableIsNotSignedUnlessItsExtensionSaysSo)
{
    items::makeFile(host.item(u"Foo.app/Contents/MacOS/tool"_s), items::machO());
    items::makeFile(host.item(u"Foo.app/Contents/MacOS/tool.dylib"_s), items::machO());
    items::makeFile(host.item(u"Foo.app/Contents/MacOS/tool.wflow"_s), items::machO());
    walk(u"Foo.app"_s);
    EXPECT_EQ(sortedMembers(),
              (QStringList{u"Foo.app/Contents/MacOS/tool.dylib"_s, u"Foo.app/Contents/MacOS/tool.wflow"_s}));
}

TEST_F(BundleScan, anItemToPassOverIsLeftOutWithAllThatIsInIt)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    items::makeBundle(host.item(u"Foo.app/Contents/PlugIns/Bar.plugin"_s));
    makeCode(u"Foo.app/Contents/PlugIns/Bar.plugin/Contents/Helpers/tool"_s);
    makeCode(u"Foo.app/Contents/MacOS/other"_s);
    walk(u"Foo.app"_s, {u"Foo.app/Contents/PlugIns/Bar.plugin"_s, u"Foo.app/Contents/MacOS/other"_s});
    EXPECT_EQ(members(), QStringList{u"Foo.app"_s});
    EXPECT_EQ(subtracted(), QStringList{u"Foo.app/Contents/MacOS/Foo"_s});
}

TEST_F(BundleScan, theTopLevelIsWalkedAlsoWhenItIsListedToPassOver)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    walk(u"Foo.app"_s, {u"Foo.app"_s});
    EXPECT_EQ(members(), QStringList{u"Foo.app"_s});
}

TEST_F(BundleScan, anItemToPassOverIsMatchedLetterForLetter)
{
    makeCode(u"Foo.app/Contents/MacOS/tool"_s);
    walk(u"Foo.app"_s, {u"Foo.app/Contents/MacOS/Tool"_s, u"Foo.app/Contents/./MacOS/tool"_s});
    EXPECT_EQ(members(), QStringList{u"Foo.app/Contents/MacOS/tool"_s});
}

TEST_F(BundleScan, leftoversVanishFromContentsFoldersOnly)
{
    const QStringList names{u"Scriptbench.plist"_s, u"Bridgescope.plist"_s};
    for (const QString &folder : {u"Foo.app/Contents"_s, u"Foo.app/Contents/PlugIns/Bar.plugin/Contents"_s,
                                  u"Foo.app/Contents/Resources"_s}) {
        for (const QString &name : names)
            makeCode(folder + u'/' + name);
    }
    makeCode(u"Foo.app/Contents/scriptbench.plist"_s);
    walk(u"Foo.app"_s);
    EXPECT_FALSE(QFileInfo::exists(host.item(u"Foo.app/Contents/Scriptbench.plist"_s)));
    EXPECT_EQ(host.listing(u"Foo.app/Contents"_s),
              (QStringList{u"PlugIns"_s, u"Resources"_s, u"scriptbench.plist"_s}));
    EXPECT_EQ(host.listing(u"Foo.app/Contents/PlugIns/Bar.plugin/Contents"_s), QStringList());
    EXPECT_EQ(sortedMembers(),
              (QStringList{u"Foo.app/Contents/Resources/Bridgescope.plist"_s,
                           u"Foo.app/Contents/Resources/Scriptbench.plist"_s,
                           u"Foo.app/Contents/scriptbench.plist"_s}));
}

TEST_F(BundleScan, aLeftoverThatCannotBeDeletedIsPassedOver)
{
    makeCode(u"Foo.app/Contents/Scriptbench.plist"_s);
    makeCode(u"Foo.app/Contents/tool"_s);
    host.files.failure = [](const QString &operation, const QString &) {
        return operation == "removeItem"_L1 ? u"locked"_s : QString();
    };
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{u"Foo.app/Contents/tool"_s});
    EXPECT_TRUE(QFileInfo::exists(host.item(u"Foo.app/Contents/Scriptbench.plist"_s)));
}

TEST_F(BundleScan, aLeftoverThatIsALinkIsDeletedWithoutWhatItLeadsTo)
{
    items::makeFile(host.item(u"kept"_s), "kept");
    items::makeLink(host.item(u"Foo.app/Contents/Scriptbench.plist"_s), host.item(u"kept"_s));
    walk(u"Foo.app"_s);
    EXPECT_EQ(host.listing(u"Foo.app/Contents"_s), QStringList());
    EXPECT_EQ(host.text(u"kept"_s), u"kept"_s);
}

TEST_F(BundleScan, sealsAndPackageMarksArePassedOverByTheirExactNames)
{
    for (const QString &name : {u"CodeResources"_s, u"codeResources"_s, u"PkgInfo"_s, u"pkginfo"_s})
        makeCode(u"Foo.app/Contents/_CodeSignature/"_s + name);
    walk(u"Foo.app"_s);
    EXPECT_EQ(sortedMembers(),
              (QStringList{u"Foo.app/Contents/_CodeSignature/codeResources"_s,
                           u"Foo.app/Contents/_CodeSignature/pkginfo"_s}));
}

TEST_F(BundleScan, hiddenFilesDoNotAppear)
{
    makeCode(u"Foo.app/Contents/.tool"_s);
    makeCode(u"Foo.app/Contents/.folder/tool"_s);
    items::makeFile(host.item(u"Foo.app/Contents/.lib.dylib"_s), "library");
    walk(u"Foo.app"_s);
    EXPECT_EQ(discovered(), QStringList());
}

TEST_F(BundleScan, aFolderThatCannotBeListedIsEmpty)
{
    items::makeBundle(host.item(u"Foo.app"_s));
    makeCode(u"Foo.app/Contents/Helpers/tool"_s);
    makeCode(u"Foo.app/Contents/Other/tool"_s);
    host.files.unreadable = {host.item(u"Foo.app/Contents/Helpers"_s),
                             host.item(u"Foo.app/Contents/Other/tool"_s)};
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{u"Foo.app"_s});
}

TEST_F(BundleScan, aFolderThatIsMissingHasNothingToSign)
{
    walk(u"Gone.app"_s);
    EXPECT_EQ(discovered(), QStringList());
}

TEST_F(BundleScan, aBundleStandsBeforeItsContents)
{
    host.files.sortsListings = true;
    items::makeBundle(host.item(u"App.app"_s));
    items::makeFramework(host.item(u"App.app/Contents/Frameworks/F.framework"_s));
    items::makeBundle(host.item(u"App.app/Contents/Frameworks/F.framework/Versions/A/Helpers/H.app"_s));
    items::makeFile(host.item(u"App.app/Contents/Frameworks/libx.dylib"_s), items::machO());
    items::makeBundle(host.item(u"App.app/Contents/PlugIns/P.plugin"_s));
    walk(u"App.app"_s);
    const QString framework = u"App.app/Contents/Frameworks/F.framework/Versions/A"_s;
    EXPECT_EQ(discovered(),
              (QStringList{u"App.app"_s, framework, framework + u"/F"_s, framework + u"/Helpers/H.app"_s,
                           framework + u"/Helpers/H.app/Contents/MacOS/H"_s,
                           u"App.app/Contents/Frameworks/libx.dylib"_s, u"App.app/Contents/MacOS/App"_s,
                           u"App.app/Contents/PlugIns/P.plugin"_s,
                           u"App.app/Contents/PlugIns/P.plugin/Contents/MacOS/P"_s}));
    EXPECT_EQ(
        members(),
        (QStringList{u"App.app"_s, framework, framework + u"/Helpers/H.app"_s,
                     u"App.app/Contents/Frameworks/libx.dylib"_s, u"App.app/Contents/PlugIns/P.plugin"_s}));
}

// Kinds of files

TEST_F(BundleScan, aUniversalFileIsSignedForAnyOfItsProcessors)
{
    using items::Processor;
    makeCode(u"Foo.app/Contents/both"_s, items::universalMachO({Processor::i386, Processor::arm64}));
    makeCode(u"Foo.app/Contents/other"_s, items::universalMachO({Processor::i386}));
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{u"Foo.app/Contents/both"_s});
}

struct FileRow {
    const char *situation;
    const char *name;
    items::Processor processor;
    bool isSigned;
};

class ExecutableFile : public ScanTest, public testing::WithParamInterface<FileRow> { };

TEST_P(ExecutableFile, isSignedByWhatItIs)
{
    const QString name = u"Foo.app/Contents/Resources/"_s + QString::fromUtf8(GetParam().name);
    makeCode(name, items::machO(GetParam().processor));
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), GetParam().isSigned ? QStringList{name} : QStringList());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ExecutableFile,
    testing::Values(FileRow{"codeForIntel", "tool", items::Processor::x86_64, true},
                    FileRow{"codeForAppleProcessors", "tool", items::Processor::arm64, true},
                    FileRow{"codeForAnotherProcessorOnly", "tool", items::Processor::i386, false},
                    FileRow{"aPropertyListThatIsCode", "Other.plist", items::Processor::x86_64, true},
                    FileRow{"aNameWithBlanksAndQuotes", "a \"b\" 'c' %1", items::Processor::x86_64, true},
                    FileRow{"aNameInOtherLetters", "hjälp…器", items::Processor::x86_64, true},
                    FileRow{"aNameOverTwoLines", "two\nlines", items::Processor::x86_64, true},
                    FileRow{"txt", "code.txt", items::Processor::x86_64, false},
                    FileRow{"h", "code.h", items::Processor::x86_64, false},
                    FileRow{"strings", "code.strings", items::Processor::x86_64, false},
                    FileRow{"rtf", "code.rtf", items::Processor::x86_64, false},
                    FileRow{"scpt", "code.scpt", items::Processor::x86_64, false},
                    FileRow{"rtfd", "code.rtfd", items::Processor::x86_64, false},
                    FileRow{"capitalsToo", "code.TXT", items::Processor::x86_64, false},
                    FileRow{"noOtherExtension", "code.hpp", items::Processor::x86_64, true}),
    [](const auto &row) { return row.param.situation; });
