// Which steps a run has, by the kind of its item and by the settings.

#include "document/steplist.h"
#include "notarization/archivesteps.h"
#include "notarization/credentialcheck.h"
#include "notarization/pollingsteps.h"
#include "notarization/stapleonlyworkflow.h"
#include "notarization/staplingsteps.h"
#include "notarization/submitworkflow.h"
#include "notarization/uploadstep.h"
#include "run/item.h"
#include "run/workingcopy.h"
#include "signing/entitlements.h"
#include "signing/packagesteps.h"
#include "signing/signingsteps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using namespace step;

struct SubmitRow {
    const char *name;
    ItemKind kind;
    StepOptions options;
    QList<Step> preparation; ///< between the working copy and the upload
};

class SubmitSteps : public testing::TestWithParam<SubmitRow> { };

struct SignOnlyRow {
    const char *name;
    bool isApp;
    StepOptions options;
    QList<Step> steps; ///< behind the working copy
};

class SignOnlySteps : public testing::TestWithParam<SignOnlyRow> { };

QList<Step> submitSteps(ItemKind kind, const StepOptions &options)
{
    return planOf(submitWorkflow(kind, options));
}

QList<Step> signOnlySteps(bool isApp, const StepOptions &options)
{
    return planOf(signOnlyWorkflow(Item(isApp ? u"/P/Foo.app"_s : u"/P/Foo"_s), options));
}

QList<Step> stapleOnlySteps()
{
    return planOf(stapleOnlyWorkflow());
}

const auto nameOfRow = [](const auto &row) { return row.param.name; };

} // namespace

TEST_P(SubmitSteps, areThoseOfTheKind)
{
    const QList<Step> expected = QList<Step>{checkCredentials, makeWorkingCopy} + GetParam().preparation
        + QList<Step>{upload, awaitResult, staple};
    EXPECT_EQ(submitSteps(GetParam().kind, GetParam().options), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, SubmitSteps,
    testing::Values(
        SubmitRow{"app",
                  ItemKind::app,
                  {},
                  {saveEntitlements, clearAttributes, lockScript, signContents, signMainFile,
                   step::makeZipArchive}},
        SubmitRow{"plugin",
                  ItemKind::plugin,
                  {},
                  {saveEntitlements, clearAttributes, signContents, signMainFile, step::makeZipArchive}},
        SubmitRow{"fmplugin",
                  ItemKind::fmplugin,
                  {},
                  {saveEntitlements, clearAttributes, signContents, signMainFile, step::makeZipArchive}},
        SubmitRow{"package", ItemKind::pkg, {}, {signPackage}},
        SubmitRow{"diskImage", ItemKind::dmg, {}, {signMainFile, findIdentifier}},
        SubmitRow{
            "appInADiskImage",
            ItemKind::app,
            {.archive = ArchiveKind::diskImage},
            {saveEntitlements, clearAttributes, lockScript, signContents, signMainFile, step::makeDiskImage}},
        SubmitRow{"appInADiskImageByDropDMG",
                  ItemKind::app,
                  {.archive = ArchiveKind::diskImageByDropDMG},
                  {saveEntitlements, clearAttributes, lockScript, signContents, signMainFile,
                   step::makeDiskImageWithDropDMG}},
        SubmitRow{"appWithoutItsContents",
                  ItemKind::app,
                  {.signsContents = false},
                  {saveEntitlements, clearAttributes, lockScript, signMainFile, step::makeZipArchive}},
        SubmitRow{"pluginWithoutItsContents",
                  ItemKind::plugin,
                  {.signsContents = false},
                  {saveEntitlements, clearAttributes, signMainFile, step::makeZipArchive}},
        SubmitRow{"appToBeAssessed",
                  ItemKind::app,
                  {.checksSignature = true},
                  {saveEntitlements, clearAttributes, lockScript, signContents, signMainFile, checkSignature,
                   step::makeZipArchive}},
        SubmitRow{"packageWhateverTheSettings",
                  ItemKind::pkg,
                  {.signsContents = false, .checksSignature = true, .archive = ArchiveKind::diskImage},
                  {signPackage}},
        SubmitRow{"diskImageWhateverTheSettings",
                  ItemKind::dmg,
                  {.signsContents = false, .checksSignature = true, .archive = ArchiveKind::diskImage},
                  {signMainFile, findIdentifier}}),
    nameOfRow);

TEST_P(SignOnlySteps, areThoseOfAnAppOrOfAFolder)
{
    const QList<Step> expected = QList<Step>{makeWorkingCopy} + GetParam().steps;
    EXPECT_EQ(signOnlySteps(GetParam().isApp, GetParam().options), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Items, SignOnlySteps,
    testing::Values(SignOnlyRow{"app",
                                true,
                                {},
                                {saveEntitlements, clearAttributes, lockScript, signContents, signMainFile}},
                    SignOnlyRow{"appWithoutItsContents",
                                true,
                                {.signsContents = false},
                                {saveEntitlements, clearAttributes, lockScript, signMainFile}},
                    SignOnlyRow{"appToBeAssessed",
                                true,
                                {.checksSignature = true},
                                {saveEntitlements, clearAttributes, lockScript, signContents, signMainFile,
                                 checkSignature}},
                    SignOnlyRow{"folder", false, {}, {saveEntitlements, clearAttributes, signContents}},
                    SignOnlyRow{"folderWhateverTheSettings",
                                false,
                                {.signsContents = false, .checksSignature = true},
                                {saveEntitlements, clearAttributes, signContents}}),
    nameOfRow);

TEST(StapleOnlySteps, areTheAssessmentAndTheStapling)
{
    EXPECT_EQ(stapleOnlySteps(), (QList<Step>{checkSignature, staple}));
}

TEST(StepNames, areThereAndAllDifferent)
{
    QStringList names;
    for (const Step &step :
         {checkCredentials, makeWorkingCopy, signPackage, saveEntitlements, clearAttributes, lockScript,
          signContents, signMainFile, checkSignature, findIdentifier, step::makeZipArchive,
          step::makeDiskImage, step::makeDiskImageWithDropDMG, upload, awaitResult, staple})
        names.append(stepName(step));
    EXPECT_FALSE(names.contains(QString()));
    EXPECT_EQ(names.removeDuplicates(), 0);
}
