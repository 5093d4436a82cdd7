#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

class Identities : public ToolFixture {
protected:
    [[nodiscard]] ToolResult find(const QStringList &more = {}) const
    {
        return run(security, QStringList{u"find-identity"_s, u"-v"_s} + more);
    }

    [[nodiscard]] ToolResult make(const QString &name, const QString &kind = u"application"_s) const
    {
        return run(keychain, {u"make-identity"_s, u"--name"_s, name, u"--kind"_s, kind});
    }

    /// Makes a self-signed certificate and its key by a program that is not ours.
    void plantPlain(const QString &certificate, const QString &key) const
    {
        ASSERT_TRUE(QDir().mkpath(statePath(u"keychain"_s)));
        const ToolResult made =
            run(u"openssl"_s,
                {u"req"_s, u"-x509"_s, u"-newkey"_s, u"ec"_s, u"-pkeyopt"_s, u"ec_paramgen_curve:P-256"_s,
                 u"-nodes"_s, u"-subj"_s, u"/CN=Plain Corp"_s, u"-out"_s, statePath(certificate),
                 u"-keyout"_s, statePath(key)});
        ASSERT_EQ(made.status, 0) << made.error.toStdString();
    }

    [[nodiscard]] QString pemPath() const { return statePath(u"keychain/"_s + identity + u".pem"_s); }
};

} // namespace

TEST_F(Identities, anEmptyKeychainHasNone)
{
    const ToolResult result = find();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, u"     0 valid identities found\n"_s);
}

TEST_F(Identities, areListedWithDigestAndName)
{
    makeIdentity();
    const QRegularExpression listing(
        u"^  1\\) [0-9A-F]{40} \"Developer ID Application: Example Corp \\(A1B2C3D4E5\\)\"\n     1 valid identities found\n$"_s);
    EXPECT_TRUE(listing.match(find().output).hasMatch()) << find().output.toStdString();
}

TEST_F(Identities, areInTheOrderOfTheirFileNames)
{
    ASSERT_EQ(make(u"Zebra (Z)"_s).status, 0);
    ASSERT_EQ(make(u"Zebra (Z)"_s, u"installer"_s).status, 0);
    ASSERT_EQ(make(u"Ant (A)"_s).status, 0);
    const QString listing = find().output;
    EXPECT_TRUE(listing.contains(QRegularExpression(
        u"1\\).*Application: Ant \\(A\\)\"\n  2\\).*Application: Zebra \\(Z\\)\"\n  3\\).*Installer: Zebra"_s)))
        << listing.toStdString();
}

TEST_F(Identities, forCodeLeaveInstallersOut)
{
    ASSERT_EQ(make(u"Zebra (Z)"_s, u"installer"_s).status, 0);
    EXPECT_TRUE(find().output.contains(u"Developer ID Installer: Zebra (Z)"_s));
    EXPECT_EQ(find({u"-p"_s, u"codesigning"_s}).output, u"     0 valid identities found\n"_s);
}

TEST_F(Identities, makingOneTwiceKeepsTheFirst)
{
    makeIdentity();
    const QByteArray first = bundlebuilder::readFile(pemPath());
    const ToolResult again = make(holder);
    EXPECT_EQ(again.status, 0);
    EXPECT_TRUE(again.output.contains(u"is there already"_s));
    EXPECT_EQ(bundlebuilder::readFile(pemPath()), first);
    EXPECT_FALSE(first.isEmpty());
}

TEST_F(Identities, areReadableByTheirOwnerAlone)
{
    makeIdentity();
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    EXPECT_FALSE(QFileInfo(pemPath()).permissions() & others);
}

TEST_F(Identities, theirKeysLieEncryptedApartFromThem)
{
    makeIdentity();
    EXPECT_FALSE(bundlebuilder::readFile(pemPath()).contains("PRIVATE KEY"));
    EXPECT_TRUE(bundlebuilder::readFile(pemPath()).contains("BEGIN CERTIFICATE"));
    EXPECT_TRUE(bundlebuilder::readFile(statePath(u"keychain/vault/vault.json"_s)).contains("sealed"));
}

TEST_F(Identities, aCertificateWithoutItsKeyIsNone)
{
    makeIdentity();
    QFile::remove(statePath(u"keychain/vault/vault.json"_s));
    EXPECT_EQ(find().output, u"     0 valid identities found\n"_s);
}

TEST_F(Identities, aPlainKeyMayLieInAFileOfItsOwn)
{
    plantPlain(u"keychain/plain.pem"_s, u"keychain/signing.key"_s);
    EXPECT_TRUE(run(security, {u"find-identity"_s}).output.contains(u"\"Plain Corp\""_s));
}

TEST_F(Identities, aCertificateWithTheKeyOfAnotherIsNone)
{
    plantPlain(u"keychain/plain.pem"_s, u"elsewhere.key"_s);
    plantPlain(u"elsewhere.pem"_s, u"keychain/other.key"_s);
    EXPECT_FALSE(run(security, {u"find-identity"_s}).output.contains(u"\"Plain Corp\""_s));
}

TEST_F(Identities, aFileThatIsNoPemIsWarnedOfAndSkipped)
{
    makeIdentity();
    bundlebuilder::writeFile(statePath(u"keychain/aaa.pem"_s), "not a certificate");
    const ToolResult result = find();
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.contains(u"     1 valid identities found\n"_s));
    EXPECT_TRUE(result.error.contains(u"warning: "_s + statePath(u"keychain/aaa.pem"_s)));
}

TEST_F(Identities, namesThatWouldSpoilTheListingAreRefused)
{
    for (const QString &name :
         {QString(), u"  "_s, u"A \"quoted\" name"_s, u"two\nlines"_s, QString(60, u'x')}) {
        const ToolResult result = make(name);
        EXPECT_EQ(result.status, 64) << name.toStdString();
        EXPECT_FALSE(result.error.isEmpty());
    }
    EXPECT_EQ(make(holder, u"notary"_s).status, 64);
}

TEST_F(Identities, namesInOtherScriptsComeBackAsTheyWere)
{
    ASSERT_EQ(make(u"Müller & Söhne (M)"_s).status, 0);
    EXPECT_TRUE(find().output.contains(u"\"Developer ID Application: Müller & Söhne (M)\""_s));
}

TEST_F(Identities, ofTwoMakersAtOnceOneFindsTheOthersWork)
{
    std::vector<std::unique_ptr<QProcess>> makers;
    for (int count = 0; count < 4; ++count)
        makers.push_back(start(keychain, {u"make-identity"_s, u"--name"_s, holder}));
    const auto made = std::count_if(makers.begin(), makers.end(), [](const auto &maker) {
        const ToolResult result = finish(*maker);
        EXPECT_EQ(result.status, 0) << result.error.toStdString();
        return result.output.contains(u" made: "_s);
    });
    EXPECT_EQ(made, 1);
}

TEST_F(Identities, securityRefusesItsOtherCommands)
{
    const ToolResult result = run(security, {u"delete-keychain"_s});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.error.contains(u"unknown command \"delete-keychain\""_s));
    EXPECT_EQ(find({u"-p"_s, u"eap"_s}).status, 2);
    const ToolResult option = run(security, {u"find-identity"_s, u"--wild"_s});
    EXPECT_EQ(option.status, 2);
    EXPECT_TRUE(option.error.contains(u"--wild"_s));
}

TEST_F(Identities, passwordItemsLieEncryptedAndAreTheirOwnersAlone)
{
    storePassword();
    const QFileInfo vault(statePath(u"keychain/vault/vault.json"_s));
    EXPECT_FALSE(bundlebuilder::readFile(vault.filePath()).contains("secret"));
    EXPECT_FALSE(bundlebuilder::readFile(vault.filePath()).contains(QByteArray("secret").toBase64()));
    EXPECT_EQ(vault.permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

TEST_F(Identities, anEmptyPasswordIsNotKept)
{
    EXPECT_EQ(run(keychain, {u"add-password"_s, u"item"_s}, "\n").status, 1);
    EXPECT_FALSE(QFileInfo::exists(statePath(u"keychain/vault/vault.json"_s)));
}

TEST_F(Identities, thatAreNotTrustedAreMarkedAndNotValid)
{
    plantPlain(u"keychain/plain.pem"_s, u"keychain/signing.key"_s);
    const QString listing = run(security, {u"find-identity"_s}).output;
    EXPECT_TRUE(listing.startsWith(u"Policy: X.509 Basic\n  Matching identities\n  1) "_s))
        << listing.toStdString();
    EXPECT_TRUE(listing.contains(u"\"Plain Corp\" (CSSMERR_TP_NOT_TRUSTED)\n     1 identities found\n"_s));
    EXPECT_TRUE(listing.endsWith(u"  Valid identities only\n     0 valid identities found\n"_s));
}

TEST_F(Identities, ofThisMachineHaveApplesExtensions)
{
    makeIdentity();
    const QString text = run(u"openssl"_s, {u"x509"_s, u"-in"_s, pemPath(), u"-noout"_s, u"-text"_s}).output;
    EXPECT_TRUE(text.contains(QRegularExpression(u"Extended Key Usage: critical\\s+Code Signing"_s)));
    EXPECT_TRUE(text.contains(u"1.2.840.113635.100.6.1.13: critical"_s));
    EXPECT_TRUE(text.contains(u"OU = A1B2C3D4E5, O = Example Corp"_s));
    const QString above = run(u"openssl"_s,
                              {u"x509"_s, u"-in"_s, statePath(u"keychain/authority/developer-id.pem"_s),
                               u"-noout"_s, u"-text"_s})
                              .output;
    EXPECT_TRUE(above.contains(u"1.2.840.113635.100.6.2.6: \n"_s)) << above.toStdString();
}

TEST_F(Identities, opensslFollowsTheirChain)
{
    makeIdentity();
    EXPECT_EQ(
        run(u"openssl"_s,
            {u"verify"_s, u"-ignore_critical"_s, u"-CAfile"_s, statePath(u"keychain/authority/root.pem"_s),
             u"-untrusted"_s, statePath(u"keychain/authority/developer-id.pem"_s), pemPath()})
            .status,
        0);
}

TEST_F(Identities, theKeychainTellsWhereItIs)
{
    EXPECT_EQ(run(keychain, {u"path"_s}).output, statePath(u"keychain\n"_s));
}
