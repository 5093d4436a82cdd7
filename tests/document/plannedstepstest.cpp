// Which steps a run has, by the kind of its item and by the settings.

#include "document/plannedsteps.h"

#include "notarization/submitworkflow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using enum Step;

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
        SubmitRow{
            "app",
            ItemKind::app,
            {},
            {saveEntitlements, clearAttributes, lockScript, signContents, signMainFile, makeZipArchive}},
        SubmitRow{"plugin",
                  ItemKind::plugin,
                  {},
                  {saveEntitlements, clearAttributes, signContents, signMainFile, makeZipArchive}},
        SubmitRow{"fmplugin",
                  ItemKind::fmplugin,
                  {},
                  {saveEntitlements, clearAttributes, signContents, signMainFile, makeZipArchive}},
        SubmitRow{"package", ItemKind::pkg, {}, {signPackage}},
        SubmitRow{"diskImage", ItemKind::dmg, {}, {signMainFile, findIdentifier}},
        SubmitRow{"appInADiskImage",
                  ItemKind::app,
                  {.archive = makeDiskImage},
                  {saveEntitlements, clearAttributes, lockScript, signContents, signMainFile, makeDiskImage}},
        SubmitRow{"appInADiskImageByDropDMG",
                  ItemKind::app,
                  {.archive = makeDiskImageWithDropDMG},
                  {saveEntitlements, clearAttributes, lockScript, signContents, signMainFile,
                   makeDiskImageWithDropDMG}},
        SubmitRow{"appWithoutItsContents",
                  ItemKind::app,
                  {.signsContents = false},
                  {saveEntitlements, clearAttributes, lockScript, signMainFile, makeZipArchive}},
        SubmitRow{"pluginWithoutItsContents",
                  ItemKind::plugin,
                  {.signsContents = false},
                  {saveEntitlements, clearAttributes, signMainFile, makeZipArchive}},
        SubmitRow{"appToBeAssessed",
                  ItemKind::app,
                  {.checksSignature = true},
                  {saveEntitlements, clearAttributes, lockScript, signContents, signMainFile, checkSignature,
                   makeZipArchive}},
        SubmitRow{"packageWhateverTheSettings",
                  ItemKind::pkg,
                  {.signsContents = false, .checksSignature = true, .archive = makeDiskImage},
                  {signPackage}},
        SubmitRow{"diskImageWhateverTheSettings",
                  ItemKind::dmg,
                  {.signsContents = false, .checksSignature = true, .archive = makeDiskImage},
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
    for (int step = int(checkCredentials); step <= int(staple); ++step)
        names.append(stepName(Step(step)));
    EXPECT_FALSE(names.contains(QString()));
    EXPECT_EQ(names.removeDuplicates(), 0);
}
