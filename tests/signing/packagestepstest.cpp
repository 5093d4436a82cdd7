// Flat packages: checked, and signed unless their signature is good.

#include "document/documentcommands.h"
#include "platform/itempath.h"
#include "support/steptest.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

const QString identity = u"Example Corp (A1B2C3D4E5)"_s;

} // namespace

class PackageStepsTest : public StepTest {
protected:
    PackageStepsTest() { items::makeFile(host.item(u"My Foo.pkg"_s), "unsigned"); }

    bool check(const QString &name = identity)
    {
        return run([&] { return steps().packages.checkPkgAndSignWithID(name); });
    }

    /// An assessment that leads to signing, and a tool that signs.
    void makeUnsigned()
    {
        host.tools.answer(u"spctl"_s, {.status = 3, .error = "rejected\nsource=no usable signature\n"});
        host.tools.answer(u"productsign"_s, {.content = "signed"});
    }

    /// The one identity is for installers too.
    void addInstallerIdentity()
    {
        host.tools.answer(u"security"_s,
                          {.output = "  1) 01 \"Developer ID Application: Example Corp (A1B2C3D4E5)\"\n"
                                     "  2) 02 \"Developer ID Installer: Example Corp (A1B2C3D4E5)\"\n"});
    }

    void failOn(const QString &operation, const QString &error)
    {
        host.files.failure = [=](const QString &asked, const QString &) {
            return asked == operation ? error : QString();
        };
    }

    /// Asserts that what the signing tool has made, and the folder beside which it did, are as they were
    /// left.
    void expectOutputLeft(const QByteArray &contents)
    {
        const QString output = host.tools.callsOf(u"productsign"_s).value(0).value(3);
        EXPECT_EQ(host.files.readFile(output).valueOr({}), contents) << output.toStdString();
        EXPECT_TRUE(QFileInfo(output.chopped(QStringView(u".My Foo.pkg").size())).isDir());
    }

    void expectFailedFolder()
    {
        EXPECT_EQ(host.listing(), (QStringList{u"My Foo - Failed"_s, u"My Foo.pkg"_s}));
        EXPECT_EQ(host.text(u"My Foo - Failed/My Foo.pkg"_s), u"unsigned"_s);
        EXPECT_EQ(host.text(u"My Foo.pkg"_s), u"unsigned"_s);
    }
};

TEST_F(PackageStepsTest, aPackageThatIsAcceptedStaysAsItIs)
{
    makeWorkingCopy(u"My Foo.pkg"_s);
    host.tools.answer(u"spctl"_s, {.error = "My Foo.pkg: accepted\nsource=Developer ID\n"});
    EXPECT_TRUE(check(u"Some Team Without Installer Certificate (X)"_s));
    EXPECT_EQ(host.tools.calls(),
              (QList<ToolCall>{{u"spctl"_s,
                                {u"--assess"_s, u"--type"_s, u"install"_s, u"-vv"_s,
                                 host.item(u"My Foo - Working/My Foo.pkg"_s)}}}));
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Checking .pkg..."_s);
    EXPECT_EQ(host.listing(u"My Foo - Working"_s), (QStringList{u"My Foo.pkg"_s, u"Submission Log.txt"_s}));
    EXPECT_EQ(host.text(u"My Foo - Working/My Foo.pkg"_s), u"unsigned"_s);
    EXPECT_TRUE(host.text(u"My Foo - Working/Submission Log.txt"_s)
                    .contains(u"Result for /usr/sbin/spctl --assess --type install -vv "_s));
    expectNoReport();
}

struct AssessmentRow {
    const char *situation;
    ToolAnswer answer;
};

class PackageToSign : public PackageStepsTest, public testing::WithParamInterface<AssessmentRow> { };

TEST_P(PackageToSign, isSignedInPlace)
{
    makeUnsigned();
    makeWorkingCopy(u"My Foo.pkg"_s);
    host.tools.answer(u"spctl"_s, GetParam().answer);
    EXPECT_TRUE(check());
    EXPECT_EQ(host.tools.order(), (QStringList{u"spctl"_s, u"productsign"_s}));
    EXPECT_EQ(host.text(u"My Foo - Working/My Foo.pkg"_s), u"signed"_s);
    EXPECT_EQ(host.text(u"My Foo.pkg"_s), u"unsigned"_s);
    EXPECT_EQ(copy(), host.item(u"My Foo - Working/My Foo.pkg"_s));
    expectNoReport();
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PackageToSign,
    testing::Values(AssessmentRow{"rejectedCertificate",
                                  {.status = 3, .error = "rejected\nsource=Expired\n"}},
                    AssessmentRow{"acceptedInWordsOnly", {.status = 3, .error = "accepted\n"}},
                    AssessmentRow{"noUsableSignature", {.error = "accepted\nsource=no usable signature\n"}},
                    AssessmentRow{"nothingOnStandardError", {.output = "accepted\n"}},
                    AssessmentRow{"diedOfASignal", {.error = "accepted\n", .signal = 6}}),
    [](const auto &row) { return row.param.situation; });

TEST_F(PackageStepsTest, theSignedPackageIsMadeBesideATemporaryFolder)
{
    makeUnsigned();
    makeWorkingCopy(u"My Foo.pkg"_s);
    EXPECT_TRUE(check());
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Signing installer .pkg..."_s);
    const auto lines = host.tools.callsOf(u"productsign"_s);
    ASSERT_EQ(lines.size(), 1);
    ASSERT_EQ(lines[0].size(), 4); // a name with blanks is one argument
    EXPECT_EQ(lines[0].mid(0, 3),
              (QStringList{u"--sign"_s, u"Developer ID Installer: Example Corp (A1B2C3D4E5)"_s,
                           host.item(u"My Foo - Working/My Foo.pkg"_s)}));
    ASSERT_TRUE(lines[0][3].endsWith(u".My Foo.pkg"_s));
    const QString directory = lines[0][3].chopped(QStringView(u".My Foo.pkg").size());
    EXPECT_TRUE(QFileInfo(directory).isDir()) << "the folder is left where it is";
    EXPECT_TRUE(QDir(directory).isEmpty());
    EXPECT_FALSE(QFileInfo::exists(lines[0][3])) << "has taken the copy's place";
}

TEST_F(PackageStepsTest, theSigningIsInTheLogFile)
{
    makeUnsigned();
    makeWorkingCopy(u"My Foo.pkg"_s);
    EXPECT_TRUE(check());
    EXPECT_TRUE(
        host.text(u"My Foo - Working/Submission Log.txt"_s)
            .contains(
                u"Result for /usr/bin/productsign --sign Developer ID Installer: Example Corp (A1B2C3D4E5) "_s));
}

TEST_F(PackageStepsTest, withoutATemporaryFolderTheFolderKeepsItsName)
{
    makeUnsigned();
    makeWorkingCopy(u"My Foo.pkg"_s);
    failOn(u"replacementDirectory"_s, u"No space left on device"_s);
    EXPECT_FALSE(check());
    expectReport(u"Error Verifying Signing"_s, u"Error in spctl: returned 0 but no output received."_s);
    EXPECT_EQ(host.listing(), (QStringList{u"My Foo - Working"_s, u"My Foo.pkg"_s}));
    EXPECT_EQ(host.tools.callsOf(u"productsign"_s).size(), 0);
}

struct ProductsignRow {
    const char *situation;
    ToolAnswer answer;
    const char *line;
};

class ProductsignFailure : public PackageStepsTest, public testing::WithParamInterface<ProductsignRow> { };

TEST_P(ProductsignFailure, isReportedAndThePackageStaysUnsigned)
{
    makeUnsigned();
    makeWorkingCopy(u"My Foo.pkg"_s);
    host.tools.answer(u"productsign"_s, GetParam().answer);
    EXPECT_FALSE(check());
    expectReport(u"Error Signing .pkg File"_s, QString::fromUtf8(GetParam().line));
    expectFailedFolder();
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ProductsignFailure,
    testing::Values(
        ProductsignRow{
            "noInstallerCertificate",
            {.status = 1, .error = "productsign: error: Could not find appropriate signing identity"},
            "Error # in productsign: productsign: error: Could not find appropriate signing "
            "identity"},
        ProductsignRow{"withoutAText", {.status = 1, .content = "half"}, "Error # in productsign."},
        ProductsignRow{"bySignal", {.signal = 9}, "Error # in productsign."}),
    [](const auto &row) { return row.param.situation; });

TEST_F(PackageStepsTest, aSigningThatFailsLeavesItsHalfFileWhereItIs)
{
    makeUnsigned();
    makeWorkingCopy(u"My Foo.pkg"_s);
    host.tools.answer(u"productsign"_s, {.status = 1, .content = "half"});
    EXPECT_FALSE(check());
    expectOutputLeft("half");
}

TEST_F(PackageStepsTest, aSignedPackageThatCannotTakeTheCopysPlaceStaysWhereItWasMade)
{
    makeUnsigned();
    makeWorkingCopy(u"My Foo.pkg"_s);
    failOn(u"replaceItem"_s, u"The volume is read only"_s);
    EXPECT_FALSE(check());
    expectOutputLeft("signed");
}

TEST_F(PackageStepsTest, aSignedPackageThatCannotTakeTheCopysPlace)
{
    makeUnsigned();
    makeWorkingCopy(u"My Foo.pkg"_s);
    failOn(u"replaceItem"_s, u"The volume is %1 read only"_s);
    EXPECT_FALSE(check());
    expectReport(u"Error Signing .pkg File"_s,
                 u"Error replacing signed .pkg file: The volume is %1 read only"_s);
    expectFailedFolder();
}

TEST_F(PackageStepsTest, aToolThatMakesNothingIsNoticed)
{
    makeUnsigned();
    makeWorkingCopy(u"My Foo.pkg"_s);
    host.tools.answer(u"productsign"_s, {});
    EXPECT_FALSE(check());
    EXPECT_TRUE(errorLine().startsWith(u"Error replacing signed .pkg file: "_s));
    expectFailedFolder();
}

TEST_F(PackageStepsTest, aSubmissionOfAPackageUploadsTheSignedCopy)
{
    makeUnsigned();
    addInstallerIdentity();
    host.launch();
    host.submitToTheEnd(host.item(u"My Foo.pkg"_s));
    EXPECT_EQ(host.tools.order(),
              (QStringList{u"altool--notarization-history"_s, u"spctl"_s, u"productsign"_s,
                           u"altool--notarize-app"_s, u"altool--notarization-info"_s, u"stapler"_s}));
    EXPECT_EQ(host.listing(u"My Foo - Notarized"_s),
              (QStringList{u"My Foo - Unmodified Original"_s, u"My Foo.pkg"_s, u"RequestUUID.txt"_s,
                           u"Submission Log.txt"_s}));
    EXPECT_EQ(host.text(u"My Foo - Notarized/My Foo.pkg"_s), u"signed"_s);
    EXPECT_EQ(host.text(u"My Foo - Notarized/My Foo - Unmodified Original/My Foo.pkg"_s), u"unsigned"_s);
}

TEST_F(PackageStepsTest, aCancelWhileProductsignRunsIsTheOnlyReport)
{
    makeUnsigned();
    makeWorkingCopy(u"My Foo.pkg"_s);
    host.tools.answer(u"productsign"_s, {.hangs = true});
    onWorker(document(), [this] { EXPECT_FALSE(steps().packages.checkPkgAndSignWithID(identity)); });
    host.runUntil([this] { return !host.tools.callsOf(u"productsign"_s).isEmpty(); });
    document().doCancel();
    host.settle();
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, u"Process Cancelled"_s);
    EXPECT_FALSE(document().cancelPressed());
    expectFailedFolder();
}

TEST_F(PackageStepsTest, aCancelWhileThePackageIsJudgedStopsTheChainBehindTheSigning)
{
    makeUnsigned();
    addInstallerIdentity();
    host.tools.answer(u"altool-h"_s, {.output = "Copyright (c) 2009, Apple Inc. Version 3.0.1\n"});
    host.tools.answer(u"spctl"_s, {.status = 3, .error = "rejected\n", .hangs = true});
    host.launch();
    commands().submit.submitURL(itempath::toUrl(host.item(u"My Foo.pkg"_s)));
    host.runUntil([this] { return !host.tools.callsOf(u"spctl"_s).isEmpty(); });
    document().doCancel();
    host.tools.release(u"spctl"_s);
    host.settle();
    EXPECT_EQ(host.tools.order(),
              (QStringList{u"altool--notarization-history"_s, u"spctl"_s, u"productsign"_s}));
    EXPECT_EQ(host.text(u"My Foo - Working/My Foo.pkg"_s), u"signed"_s);
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, u"Process Cancelled"_s);
    EXPECT_TRUE(document().cancelPressed()) << "no report came to swallow";
}
