#include "signing/signingarguments.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace signingarguments;

namespace {

const QString identity = u"Example Corp (A1B2C3D4E5)"_s;
const QString certificate = u"Developer ID Application: Example Corp (A1B2C3D4E5)"_s;

QStringList memberLine(CodesignOptions options)
{
    return codesignMember(u"/w/Foo.app/a b"_s, identity, u"/w/Entitlements.plist"_s, options);
}

QStringList mainLine(CodesignOptions options)
{
    return codesignMainFile(u"/w/Foo.app"_s, identity, u"/w/Entitlements.plist"_s, options);
}

} // namespace

TEST(SigningArguments, aMemberHasItsEntitlementsBehindTheTimestamp)
{
    EXPECT_EQ(memberLine({}),
              (QStringList{u"-o"_s, u"runtime"_s, u"--timestamp"_s, u"--entitlements"_s,
                           u"/w/Entitlements.plist"_s, u"--verbose=4"_s, u"-s"_s, certificate,
                           u"--digest-algorithm=sha1,sha256"_s, u"/w/Foo.app/a b"_s}));
}

TEST(SigningArguments, theMainFileHasItsEntitlementsBeforeTheTimestamp)
{
    EXPECT_EQ(mainLine({}),
              (QStringList{u"-o"_s, u"runtime"_s, u"--entitlements"_s, u"/w/Entitlements.plist"_s,
                           u"--timestamp"_s, u"--verbose=4"_s, u"-s"_s, certificate,
                           u"--digest-algorithm=sha1,sha256"_s, u"/w/Foo.app"_s}));
}

TEST(SigningArguments, aMainFileThatNeedsNoEntitlementsHasNone)
{
    EXPECT_EQ(codesignMainFile(u"/w/Foo.dmg"_s, identity, {}, {}),
              (QStringList{u"-o"_s, u"runtime"_s, u"--timestamp"_s, u"--verbose=4"_s, u"-s"_s, certificate,
                           u"--digest-algorithm=sha1,sha256"_s, u"/w/Foo.dmg"_s}));
}

TEST(SigningArguments, deepStandsInFront)
{
    EXPECT_EQ(memberLine({.deep = true}), QStringList{u"--deep"_s} + memberLine({}));
    EXPECT_EQ(mainLine({.deep = true}), QStringList{u"--deep"_s} + mainLine({}));
}

TEST(SigningArguments, forceStandsBeforeDeep)
{
    const QStringList both{u"--force"_s, u"--deep"_s};
    EXPECT_EQ(memberLine({.force = true}), QStringList{u"--force"_s} + memberLine({}));
    EXPECT_EQ(memberLine({.deep = true, .force = true}), both + memberLine({}));
    EXPECT_EQ(mainLine({.deep = true, .force = true}), both + mainLine({}));
}

TEST(SigningArguments, attributesAreClearedInAllThatIsInTheItem)
{
    EXPECT_EQ(xattr(u"/w/Foo.app"_s), (QStringList{u"-r"_s, u"-c"_s, u"-s"_s, u"/w/Foo.app"_s}));
}

TEST(SigningArguments, anAssessmentNamesTheKindOfUse)
{
    EXPECT_EQ(spctlExec(u"/w/Foo.app"_s),
              (QStringList{u"--assess"_s, u"--type"_s, u"exec"_s, u"-vv"_s, u"/w/Foo.app"_s}));
    EXPECT_EQ(spctlInstall(u"/w/Foo.pkg"_s),
              (QStringList{u"--assess"_s, u"--type"_s, u"install"_s, u"-vv"_s, u"/w/Foo.pkg"_s}));
}

TEST(SigningArguments, aPackageIsSignedWithTheInstallerCertificate)
{
    EXPECT_EQ(productsign(u"/w/My Foo.pkg"_s, identity, u"/w/temporary.My Foo.pkg"_s),
              (QStringList{u"--sign"_s, u"Developer ID Installer: Example Corp (A1B2C3D4E5)"_s,
                           u"/w/My Foo.pkg"_s, u"/w/temporary.My Foo.pkg"_s}));
}
