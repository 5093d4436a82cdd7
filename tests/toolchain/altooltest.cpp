// Uploads, and what the service says of them.

#include "toolchain/altooltest.h"

#include <QCryptographicHash>
#include <QUuid>

using namespace Qt::StringLiterals;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

TEST_F(Altool, anUploadIsAnsweredWithAPropertyList)
{
    makeSignedArchive();
    const ToolResult reply = upload(archive());
    ASSERT_EQ(reply.status, 0) << reply.error.toStdString();
    const QVariantMap list = platform::propertyListFromData(reply.output.toUtf8()).valueOr({}).toMap();
    EXPECT_FALSE(QUuid::fromString(uuidIn(reply)).isNull());
    EXPECT_EQ(list.value(u"success-message"_s).toString(), u"No errors uploading '%1'."_s.arg(archive()));
    EXPECT_EQ(list.value(u"tool-version"_s).toString().section(u'.', 0, 0), u"4"_s);
    EXPECT_TRUE(list.value(u"tool-path"_s).toString().endsWith(u"/altool"_s));
    EXPECT_FALSE(list.value(u"os-version"_s).toString().isEmpty());
}

TEST_F(Altool, anUploadIsAnsweredInPlainTextByDefault)
{
    makeSignedArchive();
    const ToolResult reply = altool({u"--notarize-app"_s, u"-f"_s, archive(), u"--primary-bundle-id"_s,
                                     u"com.example.app"_s, u"--asc-provider"_s, u"Team"_s});
    ASSERT_EQ(reply.status, 0) << reply.error.toStdString();
    EXPECT_TRUE(reply.output.startsWith(u"No errors uploading '%1'.\nRequestUUID = "_s.arg(archive())));
}

TEST_F(Altool, aVerdictTakesTwoQuestions)
{
    makeSignedArchive();
    const QString uuid = uuidIn(upload(archive()));
    waitForReview(uuid);
    const ToolResult first = info(uuid);
    EXPECT_EQ(verdictIn(first), u"in progress"_s);
    EXPECT_FALSE(first.output.contains(u"LogFileURL"_s));
    EXPECT_EQ(verdictIn(info(uuid)), u"success"_s);
    EXPECT_EQ(verdictIn(info(uuid)), u"success"_s);
}

TEST_F(Altool, anApprovalsReportHasTheLayoutOfTheService)
{
    makeSignedArchive();
    const QString uuid = uuidIn(upload(archive()));
    const QString hash = QString::fromLatin1(
        QCryptographicHash::hash(readFile(archive()), QCryptographicHash::Sha256).toHex());
    const QString pattern =
        u"^No errors getting notarization info\\.\n\n"
        " +Date: \\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d \\+0000\n +Hash: %1\n +LogFileURL: "
        "file:///\\S+\\.json\n"
        " +RequestUUID: %2\n +Status: success\n +Status Code: 0\nStatus Message: Package Approved\n$"_s.arg(
            hash, uuid);
    const ToolResult report = pollToTheEnd(uuid);
    EXPECT_EQ(report.status, 0);
    EXPECT_TRUE(QRegularExpression(pattern).match(report.output).hasMatch()) << report.output.toStdString();
    EXPECT_EQ(report.error, QString());
}

TEST_F(Altool, anApprovalsLogHasNoIssues)
{
    makeSignedArchive();
    const QString uuid = uuidIn(upload(archive()));
    const QJsonObject log = logOf(pollToTheEnd(uuid));
    EXPECT_EQ(log.value(u"logFormatVersion").toInt(), 1);
    EXPECT_EQ(log.value(u"jobId").toString(), uuid);
    EXPECT_EQ(log.value(u"status").toString(), u"Accepted"_s);
    EXPECT_TRUE(log.contains(u"issues"_s) && log.value(u"issues").isNull());
}

TEST_F(Altool, aReportMayBeAPropertyList)
{
    makeSignedArchive();
    const QString uuid = uuidIn(upload(archive()));
    const ToolResult reply = altool({u"--notarization-info"_s, uuid, u"--output-format"_s, u"xml"_s});
    const QVariantMap entries = platform::propertyListFromData(reply.output.toUtf8())
                                    .valueOr({})
                                    .toMap()
                                    .value(u"notarization-info"_s)
                                    .toMap();
    EXPECT_EQ(entries.value(u"RequestUUID"_s).toString(), uuid);
    EXPECT_EQ(entries.value(u"Status"_s).toString(), u"in progress"_s);
}

TEST_F(Altool, codeWithoutASignatureIsRefusedByName)
{
    ASSERT_EQ(pack(app(), archive()).status, 0);
    const QString contents = u"My App.zip/My App.app/Contents/"_s;
    EXPECT_EQ(issuesOfRefusal(),
              (QMap<QString, QString>{{contents + u"MacOS/My App"_s, u"The binary is not signed."_s},
                                      {contents + u"Frameworks/Inner.framework/Versions/A/Inner"_s,
                                       u"The binary is not signed."_s}}));
}

TEST_F(Altool, aBundleThatWasChangedAfterItWasSignedIsRefused)
{
    const ToolResult signing = signWithTime(app());
    ASSERT_EQ(signing.status, 0) << signing.error.toStdString();
    writeFile(app() + u"/Contents/Resources/Größe.txt"_s, "changed");
    ASSERT_EQ(pack(app(), archive()).status, 0);
    EXPECT_TRUE(issuesOfRefusal().values().contains(u"The signature of the binary is invalid."_s));
}

TEST_F(Altool, anArchiveCutShortIsRefused)
{
    makeSignedArchive();
    const QByteArray whole = readFile(archive());
    writeFile(archive(), whole.left(whole.size() / 2));
    EXPECT_TRUE(issuesOfRefusal().contains(u"My App.zip"_s));
}

TEST_F(Altool, aFileOfAnotherKindIsNotTaken)
{
    writeFile(path(u"image.dmg"_s), "koly");
    const ToolResult reply = upload(path(u"image.dmg"_s));
    EXPECT_EQ(reply.status, 1);
    EXPECT_TRUE(reply.error.contains(path(u"image.dmg"_s)));
    EXPECT_EQ(uuidIn(reply), QString());
    EXPECT_EQ(altool({u"--notarization-history"_s, u"0"_s}).output, u"No items found.\n"_s);
}

TEST_F(Altool, aFileThatCannotBeReadIsNamed)
{
    const ToolResult reply = upload(path(u"none.zip"_s));
    EXPECT_EQ(reply.status, 1);
    EXPECT_TRUE(reply.error.contains(path(u"none.zip"_s)));
}

TEST_F(Altool, aRequestThatNobodyMadeHasAStatusOfItsOwn)
{
    for (const QString &uuid : {u"11111111-2222-3333-4444-555555555555"_s, u"../../state"_s, QString()}) {
        const ToolResult reply = info(uuid);
        EXPECT_EQ(reply.status, 239) << uuid.toStdString();
        EXPECT_TRUE(reply.error.contains(u"Could not find the RequestUUID."_s));
        EXPECT_EQ(reply.output, QString());
    }
}

TEST_F(Altool, aRequestThatNobodyMadeIsToldInTheOldWordsAlone)
{
    const ToolResult reply = altool({u"--notarization-info"_s, u"11111111-2222-3333-4444-555555555555"_s,
                                     u"--output-format"_s, u"xml"_s});
    EXPECT_EQ(reply.status, 239);
    EXPECT_TRUE(reply.error.contains(u"*** Error: Could not find the RequestUUID."_s));
    const QVariantMap list = platform::propertyListFromData(reply.output.toUtf8()).valueOr({}).toMap();
    const QVariantList errors = list.value(u"product-errors"_s).toList();
    ASSERT_EQ(errors.size(), 1);
    const QString unknown = u"Could not find the RequestUUID."_s;
    EXPECT_EQ(
        errors.first().toMap(),
        (QVariantMap{{u"code"_s, 1519},
                     {u"message"_s, unknown},
                     {u"userInfo"_s,
                      QVariantMap{{u"NSLocalizedDescription"_s, unknown},
                                  {u"NSLocalizedFailureReason"_s, u"Apple Services operation failed."_s},
                                  {u"NSLocalizedRecoverySuggestion"_s, unknown}}}}));
}

TEST_F(Altool, aMissingPasswordItemIsNamedAsTheKeychainDoes)
{
    for (const QStringList &command :
         {QStringList{u"--notarization-history"_s, u"0"_s},
          {u"--notarization-info"_s, u"11111111-2222-3333-4444-555555555555"_s},
          {u"--notarize-app"_s, u"-f"_s, u"x"_s, u"--primary-bundle-id"_s, u"y"_s}}) {
        const ToolResult reply = run(xcrun,
                                     QStringList{u"altool"_s} + command
                                         + QStringList{u"-u"_s, u"me"_s, u"-p"_s, u"@keychain:none"_s});
        EXPECT_EQ(reply.status, 1);
        EXPECT_TRUE(reply.error.contains(u"The specified item could not be found in the keychain"_s));
    }
}

TEST_F(Altool, takesAKeyFromTheEnvironmentAndNoSecretFromTheCommandLine)
{
    const auto ask = [this](const QString &password) {
        return run(xcrun,
                   {u"altool"_s, u"--notarization-history"_s, u"0"_s, u"-u"_s, u"me"_s, u"-p"_s, password});
    };
    ASSERT_EQ(run(keychain, {u"make-api-key"_s, u"of the environment"_s}).status, 0);
    qputenv("TST_ALTOOL_KEY",
            run(security, {u"find-generic-password"_s, u"-s"_s, u"of the environment"_s, u"-w"_s})
                .output.toUtf8());
    const bool canReadItems = !qEnvironmentVariableIsEmpty("TST_ALTOOL_KEY");
    const ToolResult taken = ask(u"@env:TST_ALTOOL_KEY"_s);
    EXPECT_EQ(taken.status, canReadItems ? 0 : 1);
    EXPECT_EQ(taken.error.contains(u"altool: warning: an environment"_s), canReadItems);
    for (const QString &refused : {u"@env:NO_SUCH_VARIABLE"_s, u"@env:PATH"_s, u"secret"_s, QString()}) {
        const ToolResult reply = ask(refused);
        EXPECT_EQ(reply.status, 1) << refused.toStdString();
        EXPECT_TRUE(reply.error.contains(u"The specified item could not be found in the keychain"_s));
        EXPECT_FALSE(reply.error.contains(u"secret'"_s));
    }
}

TEST_F(Altool, aPlainPasswordIsNoApiKey)
{
    ASSERT_EQ(run(keychain, {u"add-password"_s, u"item"_s}, "abcd-efgh-ijkl-mnop\n").status, 0);
    const ToolResult reply = altool({u"--notarization-history"_s, u"0"_s});
    EXPECT_EQ(reply.status, 1);
    EXPECT_TRUE(reply.error.contains(u"The specified item could not be found in the keychain"_s));
    EXPECT_TRUE(reply.error.contains(u"add-api-key"_s)) << reply.error.toStdString();
    EXPECT_FALSE(reply.error.contains(u"abcd"_s));
}

TEST_F(Altool, refusesCommandLinesThatAreNotWhole)
{
    const QStringList credentials{u"-u"_s, u"me"_s, u"-p"_s, u"secret"_s};
    for (const QStringList &arguments :
         {QStringList{},
          {u"--notarization-history"_s, u"0"_s},
          {u"--notarization-history"_s},
          {u"--list-providers"_s},
          QStringList{u"--list-providers"_s, u"--notarization-history"_s, u"0"_s} + credentials,
          QStringList{u"--list-providers"_s, u"A1B2C3D4E5"_s} + credentials,
          QStringList{u"--notarization-history"_s, u"-1"_s} + credentials,
          QStringList{u"--notarization-history"_s, u"99999999999999999999"_s} + credentials,
          QStringList{u"--notarization-history"_s, u"first"_s} + credentials,
          QStringList{u"--notarize-app"_s, u"-f"_s, u"x.zip"_s} + credentials,
          QStringList{u"--notarize-app"_s, u"--notarization-history"_s, u"0"_s} + credentials,
          QStringList{u"--notarization-history"_s, u"0"_s, u"--output-format"_s, u"json"_s} + credentials,
          QStringList{u"--notarization-history"_s, u"0"_s, u"stray"_s} + credentials}) {
        const ToolResult reply = run(xcrun, QStringList{u"altool"_s} + arguments);
        EXPECT_EQ(reply.status, 64) << arguments.join(u' ').toStdString();
        EXPECT_FALSE(reply.error.isEmpty());
        EXPECT_EQ(reply.output, QString());
    }
}
