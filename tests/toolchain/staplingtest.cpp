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
        // with a time stamp, which the notary wants
        const ToolResult result =
            run(codesign, {u"--deep"_s, u"-o"_s, u"runtime"_s, u"--timestamp"_s, u"-s"_s, identity, app()});
        ASSERT_EQ(result.status, 0) << result.error.toStdString();
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

    void approve() const
    {
        const QString report = pollToTheEnd(submit()).output;
        ASSERT_TRUE(report.contains(u"Status: success"_s)) << report.toStdString();
    }
};

} // namespace

TEST_F(Stapling, anAssessmentAcceptsWhatIsApproved)
{
    approve();
    for (const QString &type : {u"exec"_s, u"execute"_s, u"open"_s}) {
        const ToolResult result = assess(type);
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(result.error.startsWith(
            app() + u": accepted\nsource=Notarized Developer ID of this machine\norigin="_s));
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
    EXPECT_EQ(result.error,
              app() + u": rejected\nsource=Unnotarized Developer ID of this machine\norigin="_s + identity
                  + u'\n');
}

TEST_F(Stapling, anAssessmentRejectsWhatNobodyApproved)
{
    const ToolResult result = assess();
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.error,
              app() + u": rejected\nsource=Unnotarized Developer ID of this machine\norigin="_s + identity
                  + u'\n');
}

TEST_F(Stapling, anAssessmentRejectsFilesThatDoNotAgreeWithTheSeal)
{
    approve();
    writeFile(app() + u"/Contents/Resources/Größe.txt"_s, "changed");
    const ToolResult result = assess();
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.error,
              app() + u": rejected\nsource=a sealed resource is missing or invalid\norigin="_s + identity
                  + u'\n');
}

TEST_F(Stapling, anAssessmentRejectsAChangedSeal)
{
    approve();
    const QString seal = app() + u"/Contents/_CodeSignature/CodeResources"_s;
    QByteArray list = readFile(seal);
    list.replace("<key>Resources/Größe.txt</key>\n\t\t<dict>",
                 "<key>Resources/Größe.txt</key>\n\t\t<dict><key>cdhash</key><data></data>");
    writeFile(seal, list);
    const ToolResult result = assess();
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(result.error.contains(
        u"source=invalid resource directory (directory or signature have been modified)\n"_s))
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
    EXPECT_EQ(
        assess().error,
        app()
            + u": rejected\nsource=code has no resources but signature indicates they must be present\norigin="_s
            + identity + u'\n');
}

TEST_F(Stapling, anAssessmentNeedsAnItemAndAKnownType)
{
    EXPECT_EQ(run(spctl, {u"--assess"_s, path(u"none.app"_s)}).status, 1);
    EXPECT_EQ(run(spctl, {u"--assess"_s}).status, 64);
    EXPECT_EQ(run(spctl, {app()}).status, 64);
    EXPECT_EQ(assess(u"magic"_s).status, 64);
}
