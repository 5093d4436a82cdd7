// Frameworks: what is signed is a version, never the framework.

#include "signing/scandecisions.h"
#include "signing/scantest.h"

using namespace Qt::StringLiterals;

class FrameworkScan : public ScanTest {
protected:
    const QString framework = u"Foo.app/Contents/Frameworks/Bar.framework"_s;
};

TEST_F(FrameworkScan, itsVersionIsSignedAndCurrentIsNeverEntered)
{
    items::makeFramework(host.item(framework));
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{framework + u"/Versions/A"_s});
    EXPECT_EQ(discovered(), (QStringList{framework + u"/Versions/A"_s, framework + u"/Versions/A/Bar"_s}));
    EXPECT_EQ(subtracted(), QStringList{framework + u"/Versions/A/Bar"_s});
}

TEST_F(FrameworkScan, currentIsPassedOverAlsoAsAFolder)
{
    makeCode(framework + u"/Versions/Current/tool"_s);
    walk(u"Foo.app"_s);
    EXPECT_EQ(discovered(), QStringList());
}

TEST_F(FrameworkScan, anyLinkAmongTheVersionsIsPassedOver)
{
    items::makeFramework(host.item(framework));
    items::makeLink(host.item(framework + u"/Versions/B"_s), u"A"_s);
    items::makeFile(host.item(framework + u"/Versions/readme"_s), "text");
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{framework + u"/Versions/A"_s});
}

TEST_F(FrameworkScan, eachVersionIsSignedWithItsContents)
{
    items::makeFramework(host.item(framework));
    makeCode(framework + u"/Versions/B/tool"_s); // without a dictionary
    makeCode(framework + u"/Versions/A/Helpers/helper"_s);
    walk(u"Foo.app"_s);
    EXPECT_EQ(sortedMembers(),
              (QStringList{framework + u"/Versions/A"_s, framework + u"/Versions/A/Helpers/helper"_s,
                           framework + u"/Versions/B"_s, framework + u"/Versions/B/tool"_s}));
}

TEST_F(FrameworkScan, aVersionWhoseExecutableIsMissingIsStillSigned)
{
    items::makeInfo(host.item(framework + u"/Versions/A/Resources"_s), u"Gone"_s, u"com.example.bar"_s);
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{framework + u"/Versions/A"_s});
    EXPECT_EQ(subtracted(), QStringList());
}

TEST_F(FrameworkScan, aFrameworkWithoutVersionsIsNotRecordedAndItsTopLevelNotExamined)
{
    makeCode(framework + u"/Bar"_s);
    items::makeInfo(host.item(framework + u"/Resources"_s), u"Bar"_s, u"com.example.bar"_s);
    makeCode(framework + u"/Helpers/helper"_s);
    items::makeFile(host.item(framework + u"/libx.dylib"_s), items::machO());
    walk(u"Foo.app"_s);
    EXPECT_EQ(discovered(), QStringList{framework + u"/Helpers/helper"_s});
}

TEST_F(FrameworkScan, itsOwnBundleDictionaryDoesNotMakeItABundle)
{
    items::makeBundle(host.item(framework));
    walk(u"Foo.app"_s);
    EXPECT_EQ(discovered(), QStringList{framework + u"/Contents/MacOS/Bar"_s});
    EXPECT_EQ(subtracted(), QStringList());
}

TEST_F(FrameworkScan, aBundleAtItsTopLevelIsSigned)
{
    items::makeBundle(host.item(framework + u"/Helper.app"_s));
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{framework + u"/Helper.app"_s});
}

TEST_F(FrameworkScan, theExtensionInCapitalsIsOneToo)
{
    items::makeFramework(host.item(u"Foo.app/Contents/Frameworks/Bar.FRAMEWORK"_s));
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{u"Foo.app/Contents/Frameworks/Bar.FRAMEWORK/Versions/A"_s});
}

TEST_F(FrameworkScan, aFileThatEndsInFrameworkIsAFile)
{
    makeCode(framework);
    walk(u"Foo.app"_s);
    EXPECT_EQ(members(), QStringList{framework});
}

TEST_F(FrameworkScan, itsPartsCanBePassedOver)
{
    items::makeFramework(host.item(framework));
    makeCode(framework + u"/Helpers/helper"_s);
    makeCode(framework + u"/Versions/B/tool"_s);
    walk(u"Foo.app"_s, {framework + u"/Versions/A"_s, framework + u"/Helpers"_s});
    EXPECT_EQ(sortedMembers(),
              (QStringList{framework + u"/Versions/B"_s, framework + u"/Versions/B/tool"_s}));
    walk(u"Foo.app"_s, {framework + u"/Versions"_s});
    EXPECT_EQ(members(), QStringList{framework + u"/Helpers/helper"_s});
}

TEST_F(FrameworkScan, aFrameworkWhoseKindCannotBeReadHasNothingToSign)
{
    items::makeFramework(host.item(framework));
    OrderedPathSet signableSet;
    QSet<QString> setToSubtract;
    // Its entries are still listed here; what cannot be read is what the framework itself is.
    items::makeLink(host.item(u"Alias.framework"_s), host.item(framework));
    ASSERT_TRUE(run([&] {
        steps().scanner.parseFramework(host.item(u"Alias.framework"_s), signableSet, setToSubtract, {});
        return true;
    }));
    EXPECT_EQ(signableSet.paths(), QStringList());
}

TEST_F(FrameworkScan, codeUnderALinkAtItsTopLevelIsFoundOnceWhereItLies)
{
    makeCode(framework + u"/Versions/A/Helpers/helper"_s);
    items::makeLink(host.item(framework + u"/Helpers"_s), u"Versions/A/Helpers"_s);
    walk(u"Foo.app"_s);
    EXPECT_EQ(sortedMembers(),
              (QStringList{framework + u"/Versions/A"_s, framework + u"/Versions/A/Helpers/helper"_s}));
}

TEST_F(FrameworkScan, linksToAFolderAboveDoNotHoldTheWalkForEver)
{
    items::makeFramework(host.item(framework));
    items::makeLink(host.item(framework + u"/up"_s), u".."_s);
    items::makeLink(host.item(framework + u"/higher"_s), u"../.."_s);
    walk(u"Foo.app"_s);
    EXPECT_TRUE(members().contains(framework + u"/Versions/A"_s));
}
