#include "formats/authority.h"
#include "formats/statefolder.h"
#include "formats/ticket/signedticket.h"
#include "formats/ticket/stapling.h"
#include "formats/ticket/ticketjudgement.h"
#include "formats/ticket/ticketlookup.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/httpanswers.h"
#include "toolchain/keychainfixture.h"
#include "toolchain/xarbuilder.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutex>

#include <csignal>
#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace toolchain;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;
using ticket::TicketEntry;

namespace {

const QString realPackage = QStringLiteral(PACKAGE_FILE);

/// A ticket service that knows what a test puts into it.
class TicketService {
public:
    TicketService()
        : m_server([this](const QByteArray &body) { return answer(body); })
    {
    }

    [[nodiscard]] QString url() const { return m_server.url(); }

    void put(const QString &recordName, const QByteArray &ticket, int refusals = 0)
    {
        const QMutexLocker lock(&m_mutex);
        m_tickets.insert(recordName, ticket);
        m_refusals = refusals;
    }
    [[nodiscard]] QStringList asked() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_asked;
    }

private:
    QByteArray answer(const QByteArray &body)
    {
        const QMutexLocker lock(&m_mutex);
        const QString name = QJsonDocument::fromJson(body)[u"records"][0][u"recordName"].toString();
        m_asked.append(name);
        QJsonObject record{{u"recordName"_s, name}};
        if (m_tickets.contains(name) && m_refusals-- <= 0) {
            const QJsonObject value{{u"value"_s, QString::fromLatin1(m_tickets[name].toBase64())},
                                    {u"type"_s, u"BYTES"_s}};
            record.insert(u"recordType"_s, u"DeveloperIDTicket"_s);
            record.insert(u"fields"_s, QJsonObject{{u"signedTicket"_s, value}});
        } else {
            record.insert(u"reason"_s, u"Record not found"_s);
            record.insert(u"serverErrorCode"_s, u"NOT_FOUND"_s);
        }
        return QJsonDocument(QJsonObject{{u"records"_s, QJsonArray{record}}}).toJson();
    }

    mutable QMutex m_mutex;
    QMap<QString, QByteArray> m_tickets;
    QStringList m_asked;
    int m_refusals = 0;
    HttpAnswers m_server; // last, since its thread uses the rest
};

class TicketStapling : public KeychainFixture {
protected:
    void SetUp() override
    {
        KeychainFixture::SetUp();

        qputenv("SEALWRIGHT_NOTARY_TICKETS", service.url().toUtf8());
        qputenv("SEALWRIGHT_WAIT_SCALE", "0.001");
        writeFile(package(), readFile(realPackage).chopped(1'779 + 32));
    }
    void TearDown() override
    {
        qunsetenv("SEALWRIGHT_NOTARY_TICKETS");
        qunsetenv("SEALWRIGHT_WAIT_SCALE");
        KeychainFixture::TearDown();
    }

    /// A package of Apple's tools without its ticket.
    [[nodiscard]] QString package() const { return path(u"Real.pkg"_s); }
    static inline const TicketEntry packageEntry{
        1, QByteArray::fromHex("d3ec39419fe578ba9651704ec98140fbff0684a7")};

    [[nodiscard]] ToolResult staple(const QStringList &arguments) const
    {
        return run(xcrun, QStringList{u"stapler"_s} + arguments);
    }

    [[nodiscard]] static QByteArray minted(const QList<TicketEntry> &entries)
    {
        const auto key = Authority(keychainFolder()).serviceKey(LeafPurpose::ticket);
        EXPECT_TRUE(key) << key.error().toStdString();
        return ticket::mintTicket(entries, QDateTime::currentDateTimeUtc(), key->chain.first(2),
                                  key->key.get())
            .valueOr({});
    }

    TicketService service;
};

} // namespace

TEST_F(TicketStapling, applesTicketIsAttachedAsItIs)
{
    const QByteArray whole = readFile(realPackage);
    service.put(packageEntry.recordName(), whole.chopped(16).last(1'779));
    const ToolResult result = staple({u"staple"_s, u"-v"_s, package()});
    EXPECT_EQ(result.status, 0) << result.error.toStdString() << result.output.toStdString();
    EXPECT_TRUE(result.output.startsWith(u"Processing: "_s + package() + u'\n'));
    EXPECT_TRUE(result.output.contains(u"The ticket is signed by Apple\n"_s));
    EXPECT_TRUE(result.output.endsWith(u"The staple and validate action worked!\n"_s));
    EXPECT_EQ(readFile(package()), whole);
    EXPECT_EQ(service.asked(), QStringList{u"2/1/d3ec39419fe578ba9651704ec98140fbff0684a7"_s});
    EXPECT_EQ(staple({u"validate"_s, package()}).output,
              u"Processing: "_s + package() + u"\nThe validate action worked!\n"_s);
}

TEST_F(TicketStapling, aTicketOfThisMachineIsAttachedAndNamedSo)
{
    service.put(packageEntry.recordName(), minted({packageEntry}));
    EXPECT_EQ(staple({u"staple"_s, package()}).status, 0);
    const ToolResult result = staple({u"validate"_s, u"-v"_s, package()});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.contains(u"The ticket is signed by the authority of this machine\n"_s));
}

TEST_F(TicketStapling, aTicketThatIsNotThereYetIsAskedForAgain)
{
    service.put(packageEntry.recordName(), minted({packageEntry}), 3);
    EXPECT_EQ(staple({u"staple"_s, package()}).status, 0);
    EXPECT_EQ(service.asked().size(), 4);
}

TEST_F(TicketStapling, whatHasNoTicketIsToldInTheRealProgramsWords)
{
    const QByteArray before = readFile(package());
    const ToolResult result = staple({u"staple"_s, package()});
    EXPECT_EQ(result.status, 65);
    EXPECT_EQ(
        result.output,
        u"Processing: "_s + package()
            + u"\nCloudKit query for Real.pkg (2/d3ec39419fe578ba9651704ec98140fbff0684a7) failed due to "
              "\"Record not found\".\nCould not find base64 encoded ticket in response for "
              "2/d3ec39419fe578ba9651704ec98140fbff0684a7\n"
              "The staple and validate action failed! Error 65.\n"_s);
    EXPECT_EQ(readFile(package()), before);
    EXPECT_EQ(service.asked().size(), 6);
    EXPECT_EQ(staple({u"validate"_s, package()}).status, 65);
    EXPECT_TRUE(staple({u"validate"_s, package()})
                    .output.endsWith(u"Real.pkg does not have a ticket stapled to it.\n"_s));
}

TEST_F(TicketStapling, aServiceThatIsAwayIsStatus68)
{
    qputenv("SEALWRIGHT_NOTARY_TICKETS", "http://127.0.0.1:1/lookup");
    const ToolResult result = staple({u"staple"_s, package()});
    EXPECT_EQ(result.status, 68);
    EXPECT_TRUE(result.output.contains(u"CloudKit's response is inconsistent with expections: "_s));
    EXPECT_TRUE(result.output.endsWith(u"The staple and validate action failed! Error 68.\n"_s));
}

TEST_F(TicketStapling, aTicketOfAnotherItemIsNotAttached)
{
    const QByteArray before = readFile(package());
    service.put(packageEntry.recordName(), minted({{1, QByteArray(20, 'x')}}));
    EXPECT_EQ(staple({u"staple"_s, package()}).status, 65);
    service.put(packageEntry.recordName(), "no ticket at all");
    EXPECT_EQ(staple({u"staple"_s, package()}).status, 65);
    EXPECT_EQ(readFile(package()), before);
}

TEST_F(TicketStapling, aChangedTicketDoesNotValidate)
{
    service.put(packageEntry.recordName(), minted({packageEntry}));
    ASSERT_EQ(staple({u"staple"_s, package()}).status, 0);
    const QByteArray whole = readFile(package());
    QByteArray changed = whole;
    changed[whole.size() - 16 - 72 - 30] = char(changed[whole.size() - 16 - 72 - 30] ^ 1);
    writeFile(package(), changed);
    const ToolResult result = staple({u"validate"_s, package()});
    EXPECT_EQ(result.status, 65);
    EXPECT_TRUE(result.output.contains(u"a ticket stapled to it that is not good"_s));
}

TEST_F(TicketStapling, aQuietStaplerPrintsNothing)
{
    const ToolResult result = staple({u"staple"_s, u"-q"_s, package()});
    EXPECT_EQ(result.status, 65);
    EXPECT_EQ(result.output, QString());
}

TEST_F(TicketStapling, whatCannotBeStapledIsToldApart)
{
    writeFile(path(u"text"_s), "no package");
    EXPECT_EQ(staple({u"staple"_s, path(u"none.app"_s)}).status, 66);
    EXPECT_EQ(staple({u"staple"_s, path(u"text"_s)}).status, 66);
    xarbuilder::writeArchive(path(u"bare.pkg"_s), {{u"PackageInfo"_s, "<pkg-info/>"}});
    EXPECT_EQ(staple({u"staple"_s, path(u"bare.pkg"_s)}).status, 65) << "not signed";
    EXPECT_EQ(staple({u"unstaple"_s, package()}).status, 64);
    EXPECT_EQ(staple({u"staple"_s, u"--force"_s, package()}).status, 2);
    EXPECT_EQ(service.asked(), QStringList());
}

TEST_F(TicketStapling, aTicketThatCannotBeWrittenIsStatus73)
{
    service.put(packageEntry.recordName(), minted({packageEntry}));
    const QByteArray before = readFile(package());
    const ToolResult result = run(xcrun, {u"stapler"_s, u"staple"_s, package()}, {}, [] {
        const rlimit most{1'000, 1'000};
        setrlimit(RLIMIT_FSIZE, &most);
        signal(SIGXFSZ, SIG_IGN);
    });
    EXPECT_EQ(result.status, 73);
    EXPECT_TRUE(result.output.endsWith(u"The staple and validate action failed! Error 73.\n"_s));
    EXPECT_EQ(readFile(package()), before);
}

TEST_F(TicketStapling, aBundlesTicketLiesBesideItsSeal)
{
    const QString app = path(u"App.app"_s);
    KeychainFixture::makeIdentity(IdentityKind::application);
    bundlebuilder::makeApp(app, u"com.example.app"_s);
    ASSERT_EQ(run(codesign, {u"-s"_s, identity, u"--deep"_s, u"--timestamp=none"_s, app}).status, 0);
    const auto target = ticket::StapleTarget::open(app);
    ASSERT_TRUE(target) << target.error().toStdString();
    const QList<TicketEntry> entries = (*target)->entries();
    ASSERT_EQ(entries.size(), 2) << "a universal executable has two code directories";
    const QByteArray ticket = minted(entries);
    service.put(entries.first().recordName(), ticket);
    ASSERT_TRUE(QFile::link(u"_CodeSignature/CodeResources"_s, app + u"/Contents/CodeResources"_s));
    const QByteArray seal = readFile(app + u"/Contents/_CodeSignature/CodeResources"_s);
    const ToolResult result = staple({u"staple"_s, app});
    EXPECT_EQ(result.status, 0) << result.output.toStdString() << result.error.toStdString();
    EXPECT_FALSE(QFileInfo(app + u"/Contents/CodeResources"_s).isSymLink());
    EXPECT_EQ(readFile(app + u"/Contents/CodeResources"_s), ticket);
    EXPECT_EQ(readFile(app + u"/Contents/_CodeSignature/CodeResources"_s), seal);
    EXPECT_EQ(run(codesign, {u"--verify"_s, u"--deep"_s, u"--strict"_s, app}).status, 0);
    EXPECT_EQ(staple({u"validate"_s, app}).status, 0);
    ASSERT_EQ(run(codesign,
                  {u"-f"_s, u"-s"_s, identity, u"-i"_s, u"com.example.other"_s, u"--timestamp=none"_s, app})
                  .status,
              0);
    EXPECT_EQ(staple({u"validate"_s, app}).status, 65) << "it is a ticket of the signature before";
}

TEST_F(TicketStapling, anImagesTicketIsPartOfItsSignature)
{
    const QString image = path(u"Image.dmg"_s);
    KeychainFixture::makeIdentity(IdentityKind::application);
    writeFile(path(u"folder/file"_s), "content");
    ASSERT_EQ(run(u"/usr/bin/hdiutil"_s, {u"create"_s, u"-srcfolder"_s, path(u"folder"_s), image}).status, 0);
    EXPECT_EQ(staple({u"staple"_s, image}).status, 65) << "not signed";
    ASSERT_EQ(run(codesign, {u"-s"_s, identity, u"--timestamp=none"_s, image}).status, 0);
    const auto target = ticket::StapleTarget::open(image);
    ASSERT_TRUE(target) << target.error().toStdString();
    const QByteArray ticket = minted((*target)->entries());
    service.put((*target)->entries().first().recordName(), ticket);
    EXPECT_EQ(staple({u"staple"_s, image}).status, 0);
    EXPECT_EQ((*ticket::StapleTarget::open(image))->ticket(), ticket);
    EXPECT_EQ(run(codesign, {u"--verify"_s, u"--strict"_s, image}).status, 0);
    EXPECT_EQ(run(u"7z"_s, {u"t"_s, image}).status, 0);
    EXPECT_EQ(staple({u"validate"_s, image}).status, 0);
    const QByteArray once = readFile(image);
    EXPECT_EQ(staple({u"staple"_s, image}).status, 0);
    EXPECT_EQ(readFile(image), once);
}

TEST_F(TicketStapling, aFrameworkHasNoPlaceForATicket)
{
    bundlebuilder::makeApp(path(u"App.app"_s), u"com.example.app"_s);
    const ToolResult result = staple({u"staple"_s, path(u"App.app/Contents/Frameworks/Inner.framework"_s)});
    EXPECT_EQ(result.status, 66);
    EXPECT_TRUE(result.error.contains(u"a bundle with a Contents folder only"_s))
        << result.error.toStdString();
}

TEST(TicketAnswers, areReadByTheirRecordsName)
{
    const auto found = ticket::readLookupReply(
        R"({"records":[{"recordName":"x"},{"recordName":"2/2/ab","fields":{"signedTicket":{"value":"czhjaA==","type":"BYTES"}}}]})",
        u"2/2/ab"_s);
    EXPECT_EQ(found.kind, ticket::LookupAnswer::Kind::found);
    EXPECT_EQ(found.ticket, "s8ch");
    const auto refused = ticket::readLookupReply(
        R"({"records":[{"recordName":"2/2/ab","reason":null,"serverErrorCode":"NOT_FOUND"}]})", u"2/2/ab"_s);
    EXPECT_EQ(refused.kind, ticket::LookupAnswer::Kind::notFound);
    EXPECT_TRUE(refused.reason.isNull());
    for (const QByteArray body :
         {"", "[]", "<html>", R"({"records":[]})", R"({"records":[{"recordName":"other"}]})"})
        EXPECT_EQ(ticket::readLookupReply(body, u"2/2/ab"_s).kind, ticket::LookupAnswer::Kind::unclear);
}
