// Entitlements that cannot be read or written.

#include "platform/itempath.h"
#include "support/steptest.h"

using namespace Qt::StringLiterals;

class EntitlementsFailure : public StepTest {
protected:
    EntitlementsFailure()
    {
        items::makeBundle(host.item(u"Foo.app"_s));
        items::makeFile(host.item(u"Foo.pkg"_s), "package");
        items::makeFile(host.item(u"Foo.dmg"_s), "image");
        host.tools.answer(u"security"_s,
                          {.output = "  1) 01 \"Developer ID Application: Example Corp (A1B2C3D4E5)\"\n"
                                     "  2) 02 \"Developer ID Installer: Example Corp (A1B2C3D4E5)\"\n"});
        host.launch();
        isLaunched = true;
    }

    void chooseExtra(const QString &name)
    {
        document().extraEntitlementsURL.set(itempath::toUrl(host.item(name)));
    }

    QString url(const QString &name) const
    {
        return QString::fromLatin1(itempath::toUrl(host.item(name)).toEncoded());
    }

    /// Submits the item, and asserts that the run ends with this before it has touched anything.
    void expectRefused(const QString &item, const QString &logLine)
    {
        const QStringList before = host.listing();
        const QByteArray original = items::fingerprint(host.item(item));
        host.submit(host.item(item));
        expectReport(u"Cannot Read Extra Entitlements"_s, logLine);
        EXPECT_EQ(host.listing(), before);
        EXPECT_EQ(items::fingerprint(host.item(item)), original);
        EXPECT_EQ(host.tools.order(), QStringList());
        document().extraEntitlementsURL.set({});
    }
};

TEST_F(EntitlementsFailure, anExtraFileThatIsMissing)
{
    chooseExtra(u"My Extra.plist"_s);
    expectRefused(
        u"Foo.app"_s,
        u"The designated extra entitlements file at '%1' is missing."_s.arg(url(u"My Extra.plist"_s)));
    EXPECT_TRUE(url(u"My Extra.plist"_s).startsWith(u"file:///"_s));
    EXPECT_TRUE(url(u"My Extra.plist"_s).endsWith(u"/My%20Extra.plist"_s));
    expectUsableFor(u"Foo.app"_s);
}

TEST_F(EntitlementsFailure, anExtraFileThatMayNotBeRead)
{
    items::makeFile(host.item(u"My Extra.plist"_s), "<plist><dict/></plist>");
    chooseExtra(u"My Extra.plist"_s);
    host.files.failure = [](const QString &operation, const QString &path) {
        return operation == "isReadable"_L1 && path.endsWith(u"Extra.plist"_s) ? u"no"_s : QString();
    };
    expectRefused(
        u"Foo.app"_s,
        u"Permission to read the designated extra entitlements file at '%1' has not been granted."_s.arg(
            url(u"My Extra.plist"_s)));
    expectUsableFor(u"Foo.app"_s);
}

TEST_F(EntitlementsFailure, anExtraFileWhoseReadingFails)
{
    items::makeFile(host.item(u"My Extra.plist"_s), "<plist><dict/></plist>");
    chooseExtra(u"My Extra.plist"_s);
    host.files.failure = [](const QString &operation, const QString &path) {
        return operation == "readFile"_L1 && path.endsWith(u"Extra.plist"_s) ? u"input %2 error"_s
                                                                             : QString();
    };
    expectRefused(u"Foo.app"_s,
                  u"Failed to read extra entitlements file at '%1': input %2 error"_s.replace(
                      u"%1"_s, url(u"My Extra.plist"_s)));
    expectUsableFor(u"Foo.app"_s);
}

TEST_F(EntitlementsFailure, anExtraFileThatIsAFolder)
{
    items::makeFolder(host.item(u"Extra.plist"_s));
    chooseExtra(u"Extra.plist"_s);
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_TRUE(errorLine().startsWith(
        u"Failed to read extra entitlements file at '%1': "_s.arg(url(u"Extra.plist"_s))));
}

struct ContentsRow {
    const char *situation;
    QByteArray contents;
    const char *complaint; ///< null: any text of the reader
};

class ExtraFileContents : public EntitlementsFailure, public testing::WithParamInterface<ContentsRow> { };

TEST_P(ExtraFileContents, thatAreNoDictionaryStopTheRun)
{
    items::makeFile(host.item(u"My Extra.plist"_s), GetParam().contents);
    chooseExtra(u"My Extra.plist"_s);
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    host.submit(host.item(u"Foo.app"_s));
    const QString head =
        u"Failed to read extra entitlements property list file at '%1': "_s.arg(url(u"My Extra.plist"_s));
    const QString line = errorLine();
    ASSERT_TRUE(line.startsWith(head)) << line.toStdString();
    if (GetParam().complaint)
        EXPECT_EQ(line.mid(head.size()), QString::fromLatin1(GetParam().complaint));
    else
        EXPECT_GT(line.size(), head.size());
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Cannot Read Extra Entitlements"_s);
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    document().extraEntitlementsURL.set({});
    expectUsableFor(u"Foo.app"_s);
}

constexpr auto noDictionary = "The file is damaged or does not contain a dictionary.";

INSTANTIATE_TEST_SUITE_P(
    Rows, ExtraFileContents,
    testing::Values(
        ContentsRow{"anArray", "<plist version=\"1.0\"><array><string>a</string></array></plist>",
                    noDictionary},
        ContentsRow{"aText", "<plist version=\"1.0\"><string>a</string></plist>", noDictionary},
        ContentsRow{"anOldStyleArray", "( a, b )", noDictionary}, ContentsRow{"nothing", "", nullptr},
        ContentsRow{"blanks", " \n\t\n", nullptr},
        ContentsRow{"garbage", QByteArray("\x00\xff\xfe\x80\x81 garbage {{{", 17), nullptr},
        ContentsRow{"notUTF8", "<plist version=\"1.0\"><dict><key>\xe4</key><true/></dict></plist>", nullptr},
        ContentsRow{"cutOff", "<plist version=\"1.0\"><dict><key>a</key>", nullptr},
        ContentsRow{"aBrokenBinaryList", "bplist00\xd1\x01\x02", nullptr}),
    [](const auto &row) { return row.param.situation; });

TEST_F(EntitlementsFailure, aBrokenExtraFileStopsAPackageToo)
{
    items::makeFile(host.item(u"Extra.plist"_s), "( a )");
    chooseExtra(u"Extra.plist"_s);
    expectRefused(u"Foo.pkg"_s,
                  u"Failed to read extra entitlements property list file at '%1': %2"_s.arg(
                      url(u"Extra.plist"_s), QString::fromLatin1(noDictionary)));
}

TEST_F(EntitlementsFailure, aBrokenExtraFileStopsADiskImageToo)
{
    items::makeFile(host.item(u"Extra.plist"_s), "( a )");
    chooseExtra(u"Extra.plist"_s);
    expectRefused(u"Foo.dmg"_s,
                  u"Failed to read extra entitlements property list file at '%1': %2"_s.arg(
                      url(u"Extra.plist"_s), QString::fromLatin1(noDictionary)));
}

TEST_F(EntitlementsFailure, packagesAndDiskImagesHaveNoEntitlementsFile)
{
    host.tools.answer(u"spctl"_s, {.error = "accepted\n"});
    for (const QString &item : {u"Foo.pkg"_s, u"Foo.dmg"_s}) {
        host.submit(host.item(item));
        EXPECT_EQ(host.listing(u"Foo - Submitted"_s),
                  (QStringList{item, u"RequestUUID.txt"_s, u"Submission Log.txt"_s}));
        host.firePolls();
    }
}

TEST_F(EntitlementsFailure, aValueThatTheFileCannotHold)
{
    items::makeFile(host.item(u"Extra.plist"_s), "{ a = \"\\001\"; }"); // a list, but none that XML can hold
    chooseExtra(u"Extra.plist"_s);
    host.submit(host.item(u"Foo.app"_s));
    const QString line = errorLine();
    EXPECT_TRUE(line.startsWith(u"Failed to create entitlements property list: "_s)) << line.toStdString();
    expectReport(u"Cannot Create Entitlements"_s, line);
    EXPECT_TRUE(host.listing().contains(u"Foo - Working"_s)); // not renamed
    EXPECT_FALSE(host.listing().contains(u"Foo - Failed"_s));
    EXPECT_EQ(host.tools.order(), QStringList{u"altool--notarization-history"_s});
    document().extraEntitlementsURL.set({});
    expectUsableFor(u"Foo.app"_s);
}

TEST_F(EntitlementsFailure, aFullDisk)
{
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    host.files.failure = [](const QString &operation, const QString &) {
        return operation == "writeFile"_L1 ? u"No space left on device"_s : QString();
    };
    host.submit(host.item(u"Foo.app"_s));
    expectReport(u"Cannot Save Entitlements"_s,
                 u"Failed to save entitlements file: No space left on device"_s);
    EXPECT_TRUE(host.listing().contains(u"Foo - Failed"_s));
    EXPECT_FALSE(host.listing().contains(u"Foo - Working"_s));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo.app"_s)), original);
    host.files.failure = nullptr;
    expectUsableFor(u"Foo.app"_s);
}
