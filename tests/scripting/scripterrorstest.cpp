// The numbers by which failures reach a script.

#include "scripting/scripterrors.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct Row {
    const char *name;
    QString title;
    qint64 number;
};

} // namespace

class ErrorNumber : public testing::TestWithParam<Row> { };

TEST_P(ErrorNumber, belongsToItsTitle)
{
    EXPECT_EQ(errorNumberFromString(GetParam().title), GetParam().number);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ErrorNumber,
    testing::Values(Row{"missingAppleID", u"Missing Apple ID"_s, 1100},
                    Row{"missingPassword", u"Missing Password"_s, 1101},
                    Row{"noIdentities", u"No Identities Found"_s, 1102},
                    Row{"cannotContinue", u"Cannot Continue"_s, 1103},
                    Row{"cannotCreateWorkingFolder", u"Cannot Create Working Folder"_s, 1104},
                    Row{"cannotEmptyWorkingFolder", u"Cannot Empty Working Folder"_s, 1105},
                    Row{"cannotCopyAppThatNothingRaises", u"Cannot Copy App"_s, 1106},
                    Row{"cannotCreateEntitlements", u"Cannot Create Entitlements"_s, 1107},
                    Row{"errorClearingAttributes", u"Error Clearing Attributes"_s, 1108},
                    Row{"errorThinningBinariesThatNothingRaises", u"Error Thinning Binaries"_s, 1109},
                    Row{"errorSigningCode", u"Error Signing Code"_s, 1110},
                    Row{"errorThinningFrameworkThatNothingRaises", u"Error Thinning Framework Binary"_s,
                        1111},
                    Row{"errorVerifyingSigning", u"Error Verifying Signing"_s, 1112},
                    Row{"errorMakingArchive", u"Error Making Archive"_s, 1113},
                    Row{"errorUploadingArchiveThatNothingRaises", u"Error Uploading Archive"_s, 1114},
                    Row{"noRequestUUID", u"No RequestUUID Returned"_s, 1115},
                    Row{"failedToRetrieveInfo", u"Failed to Retrieve Info"_s, 1116},
                    Row{"notarizationFailed", u"Notarization Failed"_s, 1117},
                    Row{"processCancelled", u"Process Cancelled"_s, 1118},
                    Row{"errorVerifyingCodeSigning", u"Error Verifying Code Signing"_s, 1119},
                    Row{"cannotFetchHistory", u"Cannot Fetch History"_s, 1120},
                    Row{"staplingFailed", u"Stapling Failed"_s, 1200},
                    Row{"staplingNotConfirmedThatNothingRaises", u"Stapling Not Confirmed"_s, 1201}),
    [](const auto &row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    WithoutARow, ErrorNumber,
    testing::Values(Row{"installerIdentityNotFound", u"Installer Identity Not Found"_s, 7},
                    Row{"cannotCopyFile", u"Cannot Copy File"_s, 7},
                    Row{"cannotSaveEntitlements", u"Cannot Save Entitlements"_s, 7},
                    Row{"cannotReadExtraEntitlements", u"Cannot Read Extra Entitlements"_s, 7},
                    Row{"errorSigningPackage", u"Error Signing .pkg File"_s, 7},
                    Row{"errorMakingDiskImage", u"Error Making Disk Image"_s, 7},
                    Row{"errorUploadingFile", u"Error Uploading File"_s, 7},
                    Row{"requestUUIDNotFound", u"Request UUID Not Found"_s, 7},
                    Row{"anotherLetterCase", u"stapling failed"_s, 7}, Row{"anEmptyTitle", u""_s, 7},
                    Row{"noTitle", QString(), 7}),
    [](const auto &row) { return std::string(row.param.name); });

TEST(ScriptFailure, withATextOfItsOwnNeverUsesTheLog)
{
    const ScriptFailure failure =
        scriptFailure(u"Missing Apple ID"_s, u"You need to enter your Apple ID."_s, QString(2000, u'x'));
    EXPECT_EQ(failure.number, 1100);
    EXPECT_EQ(failure.text, u"Missing Apple ID: You need to enter your Apple ID."_s);
    EXPECT_TRUE(failure.offendingText.isNull());
}

TEST(ScriptFailure, holdsALogErrorOf1499CharactersWhole)
{
    const QString logError(1499, u'x');
    const ScriptFailure failure =
        scriptFailure(u"Stapling Failed"_s, u"See the log for details."_s, logError);
    EXPECT_EQ(failure.text, u"Stapling Failed: "_s + logError);
    EXPECT_TRUE(failure.offendingText.isNull());
}

TEST(ScriptFailure, refersToTheFromParameterForALogErrorOf1500Characters)
{
    const QString logError(1500, u'x');
    const ScriptFailure failure =
        scriptFailure(u"Stapling Failed"_s, u"See the log for details."_s, logError);
    EXPECT_EQ(failure.text, u"Stapling Failed: See the 'from' parameter for detailed error message."_s);
    EXPECT_EQ(failure.offendingText, logError);
}
