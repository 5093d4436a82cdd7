// Signing the item itself, and the assessment that may follow.

#include "app/preferencekeys.h"
#include "platform/itempath.h"
#include "support/steptest.h"

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

const QString identity = u"Example Corp (A1B2C3D4E5)"_s;

} // namespace

class SigningTheItem : public StepTest {
protected:
    SigningTheItem() { items::makeBundle(host.item(u"Foo.app"_s)); }

    bool sign(bool needsEntitlements = true)
    {
        return run([&] { return steps().signing.signAndCheckAppWithID(identity, needsEntitlements); });
    }
};

TEST_F(SigningTheItem, anAppGetsItsEntitlements)
{
    makeWorkingCopy(u"Foo.app"_s);
    EXPECT_TRUE(sign());
    EXPECT_EQ(host.tools.calls(),
              (QList<ToolCall>{
                  {u"codesign"_s,
                   {u"--force"_s, u"-o"_s, u"runtime"_s, u"--entitlements"_s,
                    host.item(u"Foo - Working/Entitlements.plist"_s), u"--timestamp"_s, u"--verbose=4"_s,
                    u"-s"_s, u"Developer ID Application: Example Corp (A1B2C3D4E5)"_s,
                    u"--digest-algorithm=sha1,sha256"_s, host.item(u"Foo - Working/Foo.app"_s)}}}));
    EXPECT_TRUE(host.text(u"Foo - Working/Submission Log.txt"_s)
                    .contains(u"Result for /usr/bin/codesign --force -o runtime --entitlements "_s));
    expectNoReport();
}

TEST_F(SigningTheItem, isToldWithATildeForTheHomeFolder)
{
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", itempath::folder(host.item(u"Foo.app"_s)).toUtf8());
    makeWorkingCopy(u"Foo.app"_s);
    EXPECT_TRUE(sign());
    qputenv("HOME", home);
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Signing main file '~/Foo - Working/Foo.app'..."_s);
}

TEST_F(SigningTheItem, isNotAssessedUnlessThatIsWanted)
{
    makeWorkingCopy(u"Foo.app"_s);
    EXPECT_TRUE(sign());
    EXPECT_EQ(host.tools.callsOf(u"spctl"_s).size(), 0);
    host.preferences.setValue(key::prefDoPostCodesignCheck, true);
    EXPECT_TRUE(sign());
    EXPECT_EQ(host.tools.callsOf(u"spctl"_s),
              (QList<QStringList>{
                  {u"--assess"_s, u"--type"_s, u"exec"_s, u"-vv"_s, host.item(u"Foo - Working/Foo.app"_s)}}));
    EXPECT_EQ(host.log(LogStyle::bold).last(), u"Checking code signature..."_s);
}

TEST_F(SigningTheItem, aDiskImageIsNeverAssessed)
{
    host.preferences.setValue(key::prefDoPostCodesignCheck, true);
    items::makeFile(host.item(u"Foo.dmg"_s), "image");
    makeWorkingCopy(u"Foo.dmg"_s);
    EXPECT_TRUE(sign(false));
    EXPECT_EQ(host.tools.order(), QStringList{u"codesign"_s});
    EXPECT_FALSE(host.tools.callsOf(u"codesign"_s).first().contains(u"--entitlements"_s));
}

TEST_F(SigningTheItem, aRejectionShowsInTheLogFileOnlyAndTheRunGoesOn)
{
    host.preferences.setValue(key::prefDoPostCodesignCheck, true);
    host.tools.answer(u"spctl"_s, {.status = 3, .error = "Foo.app: rejected\n"});
    host.launch();
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    EXPECT_EQ(
        host.tools.order(),
        (QStringList{u"altool--notarization-history"_s, u"xattr"_s, u"codesign"_s, u"spctl"_s, u"ditto"_s,
                     u"altool--notarize-app"_s, u"altool--notarization-info"_s, u"stapler"_s}));
    EXPECT_TRUE(host.text(u"Foo - Notarized/Submission Log.txt"_s).contains(u"Foo.app: rejected\n"_s));
    EXPECT_FALSE(document().statusTextView.string().contains(u"rejected"_s));
}

TEST_F(SigningTheItem, afterAFailureThereIsNoAssessment)
{
    host.preferences.setValue(key::prefDoPostCodesignCheck, true);
    makeWorkingCopy(u"Foo.app"_s);
    host.tools.answer(u"codesign"_s, {.status = 1});
    EXPECT_FALSE(sign());
    EXPECT_EQ(host.tools.order(), QStringList{u"codesign"_s});
}

struct ItemRow {
    const char *situation;
    ToolAnswer answer;
    const char *line;
};

class ItemFailure : public SigningTheItem, public testing::WithParamInterface<ItemRow> { };

TEST_P(ItemFailure, endsTheRunInTheFailedFolder)
{
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    makeWorkingCopy(u"Foo.app"_s);
    host.tools.answer(u"codesign"_s, GetParam().answer);
    EXPECT_FALSE(sign());
    expectReport(u"Error Signing Code"_s, QString::fromUtf8(GetParam().line));
    EXPECT_EQ(host.listing(), (QStringList{u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo - Failed/Foo.app"_s)), original);
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    host.tools.answer(u"codesign"_s, {});
    expectUsableFor(u"Foo.app"_s);
}

INSTANTIATE_TEST_SUITE_P(Rows, ItemFailure,
                         testing::Values(ItemRow{"withAText",
                                                 {.status = 1, .error = "errSecInternalComponent\n"},
                                                 "Error # in codesign: errSecInternalComponent\n"},
                                         ItemRow{"withoutAText", {.status = 1}, "Error # in codesign."},
                                         ItemRow{"bySignal", {.signal = SIGKILL}, "Error # in codesign."},
                                         ItemRow{"placeholdersInTheText",
                                                 {.status = 2, .error = "%1%2%@"},
                                                 "Error # in codesign: %1%2%@"}),
                         [](const auto &row) { return row.param.situation; });

TEST_F(SigningTheItem, theNumberInTheFailureLineIsNotTheStatus)
{
    makeWorkingCopy(u"Foo.app"_s);
    host.tools.answer(u"codesign"_s, {.status = 77});
    EXPECT_FALSE(sign());
    const QString line = host.log(LogStyle::error).value(0);
    EXPECT_NE(line, u"Error 77 in codesign."_s);
    EXPECT_NE(line.section(u' ', 1, 1).toLongLong(), 0);
    EXPECT_TRUE(host.text(u"Foo - Failed/Submission Log.txt"_s).contains(u"\nTermination status: 77\n"_s));
}
