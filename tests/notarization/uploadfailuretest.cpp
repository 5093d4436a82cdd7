// Uploads that fail, and uploads whose receipt names no request.

#include "notarization/uploadtest.h"

using namespace Qt::StringLiterals;

struct UploadRow {
    const char *situation;
    ToolAnswer answer;
    const char *line;
};

class UploadFailure : public UploadTest, public testing::WithParamInterface<UploadRow> { };

TEST_P(UploadFailure, costsTheSignedItemAndTheArchive)
{
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    prepareArchive();
    host.tools.answer(uploadTool(), GetParam().answer);
    EXPECT_FALSE(upload());
    expectReport(u"Error Uploading File"_s, QString::fromUtf8(GetParam().line));
    EXPECT_EQ(host.listing(), (QStringList{u"Bar.dmg"_s, u"Foo - Failed"_s, u"Foo.app"_s}));
    EXPECT_EQ(host.listing(u"Foo - Failed"_s), QStringList{u"Submission Log.txt"_s});
    EXPECT_TRUE(host.timers.armed().isEmpty());
    EXPECT_FALSE(document().isBusy());
    EXPECT_FALSE(document().isPolling());
    EXPECT_EQ(host.tools.callsOf(uploadTool()).size(), 1) << "tried once";
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    host.tools.answer(uploadTool(), {.output = FakeTools::uploadReply()});
    host.tools.answer(infoTool(), {.output = FakeTools::infoReport(u"success"_s)});
    expectUsableFor(u"Foo.app"_s);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, UploadFailure,
    testing::Values(UploadRow{"withAText",
                              {.status = 173, .error = "ERROR ITMS-90000: %1 refused\n"},
                              "Error # in xcrun altool --notarize-app: ERROR ITMS-90000: %1 refused\n"},
                    UploadRow{"withoutAText", {.status = 1}, "Error # in xcrun altool --notarize-app."},
                    UploadRow{"inSpiteOfAReceipt",
                              {.status = 1, .output = FakeTools::uploadReply()},
                              "Error # in xcrun altool --notarize-app."},
                    UploadRow{"bySignal", {.signal = 15}, "Error # in xcrun altool --notarize-app."}),
    [](const auto &row) { return row.param.situation; });

class UploadTrouble : public UploadTest { };

TEST_F(UploadTrouble, showsItsTrueStatusInTheLogFileOnly)
{
    prepareArchive();
    host.tools.answer(uploadTool(), {.status = 173});
    EXPECT_FALSE(upload());
    EXPECT_FALSE(host.log(LogStyle::error).value(0).contains(u"173 in"_s));
    EXPECT_TRUE(host.text(u"Foo - Failed/Submission Log.txt"_s).contains(u"\nTermination status: 173\n"_s));
}

TEST_F(UploadTrouble, ofTheItemItselfDeletesItAsTheItem)
{
    prepareImage();
    host.tools.answer(uploadTool(), {.status = 1});
    EXPECT_FALSE(upload());
    EXPECT_EQ(host.listing(u"Bar - Failed"_s), QStringList{u"Submission Log.txt"_s});
    EXPECT_EQ(host.text(u"Bar.dmg"_s), u"image"_s);
}

TEST_F(UploadTrouble, ofAToolThatCannotStartNamesTheReason)
{
    prepareArchive();
    document().altoolPath.set(u"/no/such/altool"_s);
    EXPECT_FALSE(upload());
    EXPECT_TRUE(errorLine().startsWith(
        u"Error # in xcrun altool --notarize-app: Cannot launch '/no/such/altool': "_s))
        << errorLine().toStdString();
    EXPECT_TRUE(host.listing().contains(u"Foo - Failed"_s));
}

struct ReplyRow {
    const char *situation;
    ToolAnswer answer;
    const char *shownError; ///< the tool's own text in the log; null for none
};

class UploadWithoutIdentifier : public UploadTest, public testing::WithParamInterface<ReplyRow> { };

TEST_P(UploadWithoutIdentifier, failsAndLeavesTheFolderItsName)
{
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    prepareArchive();
    useToolOfItsOwn();
    host.tools.answer(uploadTool(), GetParam().answer);
    EXPECT_FALSE(upload());
    QStringList errors{u"No RequestUUID returned from upload."_s};
    if (GetParam().shownError)
        errors.prepend(QString::fromUtf8(GetParam().shownError));
    EXPECT_EQ(host.log(LogStyle::error), errors);
    ASSERT_EQ(host.window().sheets.size(), 1);
    EXPECT_EQ(host.window().sheets.first().messageText, u"No RequestUUID Returned"_s);
    EXPECT_EQ(host.window().sheets.first().informativeText, u"See the log for details."_s);
    EXPECT_EQ(host.listing(), (QStringList{u"Bar.dmg"_s, u"Foo - Working"_s, u"Foo.app"_s}));
    EXPECT_EQ(host.listing(u"Foo - Working"_s), QStringList{u"Submission Log.txt"_s});
    EXPECT_TRUE(host.timers.armed().isEmpty());
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    host.tools.answer(uploadTool(), {.output = FakeTools::uploadReply()});
    host.tools.answer(infoTool(), {.output = FakeTools::infoReport(u"success"_s)});
    expectUsableFor(u"Foo.app"_s);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, UploadWithoutIdentifier,
    testing::Values(ReplyRow{"aTextOnStandardErrorOnly",
                             {.error = "The service is %1 busy.\n"},
                             "The service is %1 busy.\n"},
                    ReplyRow{"nothingAtAll", {}, nullptr},
                    ReplyRow{"aSuccessMessageOnly",
                             {.output = "{ \"success-message\" = \"No errors uploading.\"; }"},
                             nullptr},
                    ReplyRow{"noPropertyList",
                             {.output = "No errors uploading.\nRequestUUID = 1\n", .error = "warning"},
                             "warning"},
                    ReplyRow{"garbage", {.output = QByteArray("\x00\xff\xfe\x80", 4)}, nullptr}),
    [](const auto &row) { return row.param.situation; });

TEST_F(UploadTrouble, aReceiptWithoutIdentifierDoesNotTellItsSuccessMessage)
{
    prepareArchive();
    host.tools.answer(uploadTool(), {.output = "{ \"success-message\" = \"No errors uploading.\"; }"});
    EXPECT_FALSE(upload());
    EXPECT_FALSE(document().statusTextView.string().contains(u"Upload result"_s));
}

TEST_F(UploadTrouble, aReceiptWithoutIdentifierCostsTheItemThatWasUploaded)
{
    prepareImage();
    host.tools.answer(uploadTool(), {.output = "{}"});
    EXPECT_FALSE(upload());
    EXPECT_EQ(host.listing(u"Bar - Working"_s), QStringList{u"Submission Log.txt"_s});
    EXPECT_EQ(host.text(u"Bar.dmg"_s), u"image"_s);
}
