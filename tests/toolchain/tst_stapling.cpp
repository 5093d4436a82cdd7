#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

class Stapling : public ToolFixture {
protected:
    void SetUp() override
    {
        ToolFixture::SetUp();
        makeIdentity();
        storePassword();
        bundlebuilder::makeApp(app(), u"com.example.app"_s);
        ASSERT_EQ(sign(app()).status, 0);
    }

    [[nodiscard]] QString app() const { return path(u"App.app"_s); }
    [[nodiscard]] QString ticket() const { return app() + u"/Contents/CodeResources"_s; }

    /// Sends the app to the notary and answers the request's identifier.
    [[nodiscard]] QString submit() const
    {
        EXPECT_EQ(pack(app(), path(u"App.zip"_s)).status, 0);
        return uuidIn(upload(path(u"App.zip"_s)));
    }

    [[nodiscard]] ToolResult staple(const QString &action = u"staple"_s) const
    {
        return run(xcrun, {u"stapler"_s, action, u"-v"_s, app()});
    }

    [[nodiscard]] ToolResult assess(const QString &type = u"exec"_s) const
    {
        return run(spctl, {u"--assess"_s, u"--type"_s, type, u"-vv"_s, app()});
    }

    void approve() const { ASSERT_TRUE(pollToTheEnd(submit()).output.contains(u"Status: success"_s)); }
};

const QString failure = u"The staple and validate action failed! Error 65.\n"_s;

} // namespace

TEST_F(Stapling, leavesATicketInAnApprovedBundle)
{
    const QString uuid = submit();
    ASSERT_TRUE(pollToTheEnd(uuid).output.contains(u"Status: success"_s));
    const ToolResult result = staple();
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.startsWith(u"Processing: "_s + app() + u'\n'));
    EXPECT_TRUE(result.output.endsWith(u"The staple and validate action worked!\n"_s));
    EXPECT_EQ(result.error, QString());
    EXPECT_EQ(QJsonDocument::fromJson(readFile(ticket())).object().value(u"RequestUUID").toString(), uuid);
}

TEST_F(Stapling, refusesABundleThatWasNeverSent)
{
    const ToolResult result = staple();
    EXPECT_EQ(result.status, 65);
    EXPECT_TRUE(result.output.contains(u"CloudKit query for App.app "_s));
    EXPECT_TRUE(result.output.contains(
        u"failed due to \"Record not found\".\nCould not find base64 encoded ticket in response for "_s));
    EXPECT_TRUE(result.output.endsWith(failure));
    EXPECT_FALSE(QFileInfo::exists(ticket()));
}

TEST_F(Stapling, refusesABundleWhoseRequestIsInProgress)
{
    const QString uuid = submit();
    EXPECT_EQ(staple().status, 65);
    EXPECT_EQ(info(uuid).status, 0);
    EXPECT_EQ(staple().status, 65);
}

TEST_F(Stapling, refusesABundleThatWasRefused)
{
    writeFile(app() + u"/Contents/Resources/added"_s, "not sealed");
    ASSERT_TRUE(pollToTheEnd(submit()).output.contains(u"Status: invalid"_s));
    EXPECT_EQ(staple().status, 65);
    EXPECT_FALSE(QFileInfo::exists(ticket()));
}

TEST_F(Stapling, refusesABundleThatWasSealedAnewAfterItsApproval)
{
    approve();
    writeFile(app() + u"/Contents/Resources/added"_s, "later");
    ASSERT_EQ(sign(app(), {u"--force"_s}).status, 0);
    EXPECT_EQ(staple().status, 65);
}

TEST_F(Stapling, followsABundleThatWasMoved)
{
    approve();
    ASSERT_TRUE(QFile::rename(app(), path(u"Renamed.app"_s)));
    EXPECT_EQ(run(xcrun, {u"stapler"_s, u"staple"_s, path(u"Renamed.app"_s)}).status, 0);
}

TEST_F(Stapling, replacesALinkInTheTicketsPlaceAndNotTheSeal)
{
    ASSERT_TRUE(QFile::link(u"_CodeSignature/CodeResources"_s, ticket()));
    approve();
    const QByteArray seal = readFile(app() + u"/Contents/_CodeSignature/CodeResources"_s);
    ASSERT_EQ(staple().status, 0);
    EXPECT_FALSE(QFileInfo(ticket()).isSymLink());
    EXPECT_EQ(readFile(app() + u"/Contents/_CodeSignature/CodeResources"_s), seal);
}

TEST_F(Stapling, validationLooksAtTheTicketAlone)
{
    const ToolResult before = staple(u"validate"_s);
    EXPECT_EQ(before.status, 65);
    EXPECT_TRUE(before.output.contains(u"App.app does not have a ticket stapled to it."_s));
    approve();
    ASSERT_EQ(staple().status, 0);
    const ToolResult after = staple(u"validate"_s);
    EXPECT_EQ(after.status, 0);
    EXPECT_TRUE(after.output.endsWith(u"The validate action worked!\n"_s));
}

TEST_F(Stapling, aTicketOfAnotherSealDoesNotValidate)
{
    approve();
    ASSERT_EQ(staple().status, 0);
    writeFile(app() + u"/Contents/Resources/added"_s, "later");
    ASSERT_EQ(sign(app(), {u"--force"_s}).status, 0);
    EXPECT_EQ(staple(u"validate"_s).status, 65);
    EXPECT_EQ(assess().status, 3);
}

TEST_F(Stapling, refusesWhatNoTicketCanBeAttachedTo)
{
    writeFile(path(u"image.dmg"_s), "koly");
    EXPECT_EQ(run(xcrun, {u"stapler"_s, u"staple"_s, path(u"image.dmg"_s)}).status, 72);
    EXPECT_EQ(run(xcrun, {u"stapler"_s, u"staple"_s, path(u"none.app"_s)}).status, 66);
    EXPECT_EQ(run(xcrun, {u"stapler"_s, u"unstaple"_s, app()}).status, 64);
    EXPECT_EQ(run(xcrun, {u"stapler"_s, u"staple"_s}).status, 64);
}

TEST_F(Stapling, anAssessmentAcceptsWhatIsApproved)
{
    approve();
    for (const QString &type : {u"exec"_s, u"execute"_s, u"open"_s}) {
        const ToolResult result = assess(type);
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(
            result.error.startsWith(app() + u": accepted\nsource=Notarized (local stand-in)\norigin="_s));
        EXPECT_EQ(result.output, QString());
    }
}

TEST_F(Stapling, anAssessmentOfAStapledBundleAsksNoNotary)
{
    approve();
    ASSERT_EQ(staple().status, 0);
    ASSERT_TRUE(QFile::rename(statePath(u"notary"_s), statePath(u"forgotten"_s)));
    EXPECT_EQ(assess().status, 0);
}

TEST_F(Stapling, anAssessmentWaitsForTheVerdict)
{
    const QString uuid = submit();
    EXPECT_EQ(assess(u"execute"_s).status, 3) << "its request is in progress";
    ASSERT_TRUE(pollToTheEnd(uuid).output.contains(u"Status: success"_s));
    const ToolResult approved = assess(u"execute"_s);
    EXPECT_EQ(approved.status, 0);
    EXPECT_TRUE(approved.error.startsWith(app() + u": accepted\n"_s)) << approved.error.toStdString();
    ASSERT_EQ(staple().status, 0);
    EXPECT_EQ(assess(u"execute"_s).error, approved.error);
}

TEST_F(Stapling, anAssessmentRejectsWhatTheNotaryRefused)
{
    writeFile(app() + u"/Contents/Resources/added"_s, "not sealed");
    ASSERT_TRUE(pollToTheEnd(submit()).output.contains(u"Status: invalid"_s));
    ASSERT_TRUE(QFile::remove(app() + u"/Contents/Resources/added"_s));
    const ToolResult result = assess(u"execute"_s);
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.error, app() + u": rejected\nsource=Unnotarized (local stand-in)\n"_s);
}

TEST_F(Stapling, anAssessmentRejectsWhatNobodyApproved)
{
    const ToolResult result = assess();
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.error, app() + u": rejected\nsource=Unnotarized (local stand-in)\n"_s);
}

TEST_F(Stapling, anAssessmentRejectsFilesThatDoNotAgreeWithTheSeal)
{
    approve();
    writeFile(app() + u"/Contents/Resources/Größe.txt"_s, "changed");
    const ToolResult result = assess();
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(
        result.error,
        app()
            + u": rejected\nsource=a sealed resource is missing or invalid: file modified (Resources/Größe.txt)\n"_s);
}

TEST_F(Stapling, anAssessmentRejectsNestedCodeThatItCannotCheck)
{
    approve();
    const QString seal = app() + u"/Contents/_CodeSignature/CodeResources"_s;
    QByteArray list = readFile(seal);
    list.replace("<key>Resources/Größe.txt</key>\n\t\t<dict>",
                 "<key>Resources/Größe.txt</key>\n\t\t<dict><key>cdhash</key><data></data>");
    writeFile(seal, list);
    const ToolResult result = assess();
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(result.error.contains(u"nested code sealed by its code directory"_s))
        << result.error.toStdString();
}

TEST_F(Stapling, anAssessmentRejectsPackagesAndUnsealedItems)
{
    writeFile(path(u"App.pkg"_s), "xar!");
    const ToolResult package =
        run(spctl, {u"--assess"_s, u"--type"_s, u"install"_s, u"-vv"_s, path(u"App.pkg"_s)});
    EXPECT_EQ(package.status, 3);
    EXPECT_EQ(package.error, path(u"App.pkg"_s) + u": rejected\nsource=no usable signature\n"_s);
    ASSERT_TRUE(QFile::remove(app() + u"/Contents/_CodeSignature/CodeResources"_s));
    EXPECT_EQ(assess().error, app() + u": rejected\nsource=no usable signature\n"_s);
}

TEST_F(Stapling, anAssessmentNeedsAnItemAndAKnownType)
{
    EXPECT_EQ(run(spctl, {u"--assess"_s, path(u"none.app"_s)}).status, 1);
    EXPECT_EQ(run(spctl, {u"--assess"_s}).status, 64);
    EXPECT_EQ(run(spctl, {app()}).status, 64);
    EXPECT_EQ(assess(u"magic"_s).status, 64);
}
