#include "formats/authority.h"
#include "formats/statefolder.h"
#include "formats/ticket/stapling.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/keychainfixture.h"

#include <QDir>

using namespace Qt::StringLiterals;
using namespace toolchain;

namespace {

/// Bundles and packages as spctl sees them. The notary's service is out of reach, so that only attached
/// tickets count.
class Assessment : public KeychainFixture {
protected:
    void SetUp() override
    {
        KeychainFixture::SetUp();
        bundlebuilder::writeFile(
            statePath(u"notary/service.json"_s),
            R"({"api": "https://127.0.0.1:1/notary/v2", "tickets": "https://127.0.0.1:1/"})");
    }

    [[nodiscard]] QString app() const { return path(u"App.app"_s); }

    void signApp() const
    {
        ToolFixture::makeIdentity();
        bundlebuilder::makeApp(app(), u"com.example.app"_s);
        const ToolResult signature =
            run(codesign, {u"--deep"_s, u"-o"_s, u"runtime"_s, u"-s"_s, identity, app()});
        ASSERT_EQ(signature.status, 0) << signature.error.toStdString();
    }

    /// Attaches a ticket of this machine's notary.
    static void staple(const QString &item)
    {
        const auto target = ticket::StapleTarget::open(item);
        ASSERT_TRUE(target) << target.error().toStdString();
        const auto key = Authority(keychainFolder()).serviceKey(LeafPurpose::ticket);
        ASSERT_TRUE(key) << key.error().toStdString();
        const auto minted = ticket::mintTicket((**target).entries(), QDateTime::currentDateTimeUtc(),
                                               key->chain.mid(0, 2), key->key.get());
        ASSERT_TRUE(minted) << minted.error().toStdString();
        const auto attached = (**target).attach(*minted);
        ASSERT_TRUE(attached) << attached.error().toStdString();
    }

    [[nodiscard]] ToolResult assess(const QString &item, const QString &type = u"exec"_s,
                                    const QStringList &more = {}) const
    {
        return run(spctl, QStringList{u"--assess"_s, u"--type"_s, type, u"-vv"_s} + more + QStringList{item});
    }
};

} // namespace

TEST_F(Assessment, anUnsignedItemHasNoUsableSignature)
{
    bundlebuilder::makeApp(app(), u"com.example.app"_s);
    const ToolResult result = assess(app());
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.error, app() + u": rejected\nsource=no usable signature\n"_s);
}

TEST_F(Assessment, endsAtTheFirstItemThatIsNotAcceptedUnlessItIsToGoOn)
{
    signApp();
    staple(app());
    const QString rejected = path(u"Other.app"_s);
    bundlebuilder::makeApp(rejected, u"com.example.other"_s);
    const ToolResult ended = run(spctl, {u"-a"_s, rejected, app()});
    EXPECT_EQ(ended.status, 3);
    EXPECT_EQ(ended.error, rejected + u": rejected\n"_s);
    const ToolResult wentOn = run(spctl, {u"-a"_s, u"--continue"_s, rejected, app()});
    EXPECT_EQ(wentOn.status, 3);
    EXPECT_EQ(wentOn.error, rejected + u": rejected\n"_s + app() + u": accepted\n"_s);
}

TEST_F(Assessment, ofThisMachineWithoutATicketIsToldAsThat)
{
    signApp();
    const ToolResult result = assess(app());
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.error,
              app() + u": rejected\nsource=Unnotarized Developer ID of this machine\norigin="_s + identity
                  + u'\n');
}

TEST_F(Assessment, ofThisMachineWithATicketIsAcceptedAsThat)
{
    signApp();
    staple(app());
    const ToolResult result = assess(app());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error,
              app() + u": accepted\nsource=Notarized Developer ID of this machine\norigin="_s + identity
                  + u'\n');
}

TEST_F(Assessment, whatTheNotaryWouldRefuseForItsRuntimeIsTold)
{
    ToolFixture::makeIdentity();
    bundlebuilder::makeApp(app(), u"com.example.app"_s);
    ASSERT_EQ(run(codesign, {u"--deep"_s, u"-s"_s, identity, app()}).status, 0);
    const ToolResult result = assess(app());
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.error.section(u'\n', 3, 3),
              u"note=the hardened runtime is off, without which nothing is notarized"_s);
    EXPECT_EQ(run(spctl, {u"-a"_s, app()}).error, app() + u": rejected\n"_s);
}

TEST_F(Assessment, withoutVerbosityOnlyTheVerdictIsTold)
{
    signApp();
    EXPECT_EQ(run(spctl, {u"-a"_s, app()}).error, app() + u": rejected\n"_s);
}

TEST_F(Assessment, aTicketOfAnotherItemIsNone)
{
    signApp();
    staple(app());
    const QByteArray foreign = bundlebuilder::readFile(app() + u"/Contents/CodeResources"_s);
    ASSERT_EQ(run(codesign, {u"-f"_s, u"--deep"_s, u"-i"_s, u"com.example.other"_s, u"-s"_s, identity, app()})
                  .status,
              0);
    bundlebuilder::writeFile(app() + u"/Contents/CodeResources"_s, foreign);
    EXPECT_TRUE(assess(app()).error.contains(u"source=Unnotarized Developer ID of this machine"_s));
}

TEST_F(Assessment, aChangedResourceIsRejectedEvenWithATicket)
{
    signApp();
    staple(app());
    bundlebuilder::writeFile(app() + u"/Contents/Resources/added.txt"_s, "added");
    const ToolResult result = assess(app());
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(result.error.contains(u"source=a sealed resource is missing or invalid\n"_s))
        << result.error.toStdString();
}

TEST_F(Assessment, anAdHocSignatureIsNotUsable)
{
    bundlebuilder::makeApp(app(), u"com.example.app"_s);
    ASSERT_EQ(run(codesign, {u"--deep"_s, u"-s"_s, u"-"_s, app()}).status, 0);
    EXPECT_EQ(assess(app()).error, app() + u": rejected\nsource=no usable signature\n"_s);
}

TEST_F(Assessment, anIdentityThatNobodyVouchesForIsNotTrusted)
{
    signApp();
    staple(app());
    ASSERT_TRUE(QDir(statePath(u"keychain/authority"_s)).removeRecursively());
    const ToolResult result = assess(app());
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(result.error.contains(u"the certificate is not trusted"_s)) << result.error.toStdString();
}

TEST_F(Assessment, aPackageOfApplesIsAcceptedByItsTicket)
{
    const QString package = QStringLiteral(PACKAGE_FILE);
    const ToolResult result = assess(package, u"install"_s);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(
        result.error,
        package
            + u": accepted\nsource=Notarized Developer ID\norigin=Developer ID Installer: Fumihiko Takayama (G43BCU2T37)\n"_s);
}

TEST_F(Assessment, whatIsNoPackageCannotBeInstalled)
{
    signApp();
    EXPECT_EQ(assess(app(), u"install"_s).status, 3);
    EXPECT_TRUE(assess(QStringLiteral(PACKAGE_FILE)).error.contains(u"source=no usable signature"_s));
}

TEST_F(Assessment, aDiskImageIsOpenedOnlyByItsOwnSignature)
{
    ToolFixture::makeIdentity();
    bundlebuilder::writeFile(path(u"folder/file"_s), "x");
    ASSERT_EQ(run(u"/usr/bin/hdiutil"_s,
                  {u"create"_s, path(u"I.dmg"_s), u"-volname"_s, u"I"_s, u"-srcfolder"_s, path(u"folder"_s)})
                  .status,
              0);
    ASSERT_EQ(run(codesign, {u"-s"_s, identity, path(u"I.dmg"_s)}).status, 0);
    EXPECT_EQ(assess(path(u"I.dmg"_s), u"open"_s).error,
              path(u"I.dmg"_s) + u": rejected\nsource=Insufficient Context\n"_s);
    const QStringList context{u"--context"_s, u"context:primary-signature"_s};
    EXPECT_TRUE(assess(path(u"I.dmg"_s), u"open"_s, context)
                    .error.contains(u"source=Unnotarized Developer ID of this machine"_s));
    staple(path(u"I.dmg"_s));
    EXPECT_EQ(assess(path(u"I.dmg"_s), u"open"_s, context).status, 0);
    EXPECT_EQ(assess(path(u"I.dmg"_s), u"exec"_s).status, 3);
}

TEST_F(Assessment, wrongUseHasItsOwnStatuses)
{
    EXPECT_EQ(run(spctl, {u"--assess"_s, path(u"none.app"_s)}).status, 1);
    EXPECT_EQ(run(spctl, {u"--assess"_s}).status, 64);
    EXPECT_EQ(run(spctl, {u"--assess"_s, u"--wild"_s, path(u"none.app"_s)}).status, 2);
    EXPECT_EQ(assess(path(u"none.app"_s), u"exec"_s, {u"--context"_s, u"context:other"_s}).status, 2);
}
