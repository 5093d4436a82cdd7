#include "formats/keychain/importing.h"
#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QDir>

using namespace Qt::StringLiterals;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

/// Each place where a private key can lie signs once.
class KeyStores : public ToolFixture {
protected:
    void SetUp() override
    {
        ToolFixture::SetUp();
        ASSERT_TRUE(QDir().mkdir(path(u"runtime"_s)));
        QFile::setPermissions(path(u"runtime"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        m_before = qgetenv("XDG_RUNTIME_DIR");
        qputenv("XDG_RUNTIME_DIR", path(u"runtime"_s).toUtf8());
        writeFile(path(u"item"_s), "hello\n");
    }

    void TearDown() override
    {
        qputenv("XDG_RUNTIME_DIR", m_before);
        qunsetenv("SOFTHSM2_CONF");
    }

    [[nodiscard]] ToolResult signItem(const QString &with) const
    {
        return run(codesign, {u"-f"_s, u"-s"_s, with, path(u"item"_s)});
    }

    [[nodiscard]] QString authority() const { return run(codesign, {u"-dvv"_s, path(u"item"_s)}).error; }

    /// Runs a script on a message bus of its own, with an open Secret Service there.
    [[nodiscard]] ToolResult runOnDesktop(const QString &script) const
    {
        const QString whole =
            u"set -e; export HOME=%1 XDG_DATA_HOME=%1/data; mkdir -p \"$XDG_DATA_HOME\"\n"
            "printf secret | gnome-keyring-daemon --unlock --components=secrets >/dev/null 2>&1\n"
            "cd %2\n%3"_s.arg(path(u"home"_s), toolRoot() + u"/usr/bin"_s, script);
        return run(u"dbus-run-session"_s, {u"--"_s, u"bash"_s, u"-c"_s, whole});
    }

    /// A software token with a key, whose certificate lies in a file.
    void makeToken() const
    {
        ASSERT_TRUE(QDir().mkpath(path(u"tokens"_s)));
        writeFile(path(u"softhsm2.conf"_s),
                  u"directories.tokendir = %1\nobjectstore.backend = file\nlog.level = ERROR\n"_s
                      .arg(path(u"tokens"_s))
                      .toUtf8());
        qputenv("SOFTHSM2_CONF", path(u"softhsm2.conf"_s).toUtf8());
        ASSERT_EQ(run(u"softhsm2-util"_s,
                      {u"--init-token"_s, u"--free"_s, u"--label"_s, u"seal"_s, u"--pin"_s, u"1234"_s,
                       u"--so-pin"_s, u"4321"_s})
                      .status,
                  0);
        ASSERT_EQ(run(u"openssl"_s,
                      {u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s, u"-subj"_s,
                       u"/CN=Token Corp"_s, u"-keyout"_s, path(u"key.pem"_s), u"-out"_s, path(u"cert.pem"_s)})
                      .status,
                  0);
        ASSERT_EQ(run(u"softhsm2-util"_s,
                      {u"--import"_s, path(u"key.pem"_s), u"--token"_s, u"seal"_s, u"--label"_s, u"signing"_s,
                       u"--id"_s, u"a1"_s, u"--pin"_s, u"1234"_s})
                      .status,
                  0);
        QFile::remove(path(u"key.pem"_s));
    }

    [[nodiscard]] ToolResult importToken(const QByteArray &pin, const QString &object = u"signing"_s) const
    {
        return run(keychain,
                   {u"import-token"_s, u"pkcs11:token=seal;object=%1;type=private"_s.arg(object),
                    u"--passphrase-file"_s, u"-"_s},
                   pin);
    }

private:
    QByteArray m_before;
};

} // namespace

TEST_F(KeyStores, aFileUnderAPassphraseSigns)
{
    ASSERT_EQ(run(keychain, {u"unlock"_s, u"--passphrase-file"_s, u"-"_s}, "secret").status, 0);
    makeIdentity();
    EXPECT_EQ(signItem(identity).status, 0);
    EXPECT_TRUE(authority().contains(u"Authority="_s + identity));
    ASSERT_EQ(run(keychain, {u"lock"_s}).status, 0);
    const ToolResult refused = signItem(identity);
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.error.contains(u"the keychain is locked"_s)) << refused.error.toStdString();
}

TEST_F(KeyStores, theSecretServiceSigns)
{
    makeIdentity();
    const ToolResult result = runOnDesktop(
        u"./sealwright-keychain use-store secret-service\n./sealwright-keychain status\n./codesign -s '%1' %2\n"_s
            .arg(identity, path(u"item"_s)));
    ASSERT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_TRUE(result.output.contains(u"store: secret-service"_s));
    EXPECT_TRUE(authority().contains(u"Authority="_s + identity));
    EXPECT_TRUE(QDir(statePath(u"keychain/vault"_s)).entryList({u"*.key"_s}).isEmpty());
}

TEST_F(KeyStores, aSecretServiceThatIsAwayIsToldAndSignsNothing)
{
    makeIdentity();
    ASSERT_EQ(runOnDesktop(u"./sealwright-keychain use-store secret-service\n"_s).status, 0);
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    const ToolResult refused = signItem(identity);
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.error.contains(u"the Secret Service: "_s)) << refused.error.toStdString();
}

TEST_F(KeyStores, theWayBackToAFileKeepsEverything)
{
    makeIdentity();
    ASSERT_EQ(runOnDesktop(
                  u"./sealwright-keychain use-store secret-service\n./sealwright-keychain use-store file\n"_s)
                  .status,
              0);
    EXPECT_EQ(signItem(identity).status, 0);
}

TEST_F(KeyStores, aTokenSignsAndKeepsItsKey)
{
    makeToken();
    ASSERT_EQ(run(security, {u"import"_s, path(u"cert.pem"_s)}).status, 0);
    const ToolResult imported = importToken("1234\n");
    ASSERT_EQ(imported.status, 0) << imported.error.toStdString();
    EXPECT_EQ(imported.output, u"\"Token Corp\" can be used; its key stays in the token\n"_s);
    EXPECT_EQ(signItem(u"Token Corp"_s).status, 0);
    EXPECT_TRUE(authority().contains(u"Authority=Token Corp"_s));
    EXPECT_TRUE(readFile(statePath(u"keychain/vault/vault.json"_s)).contains("\"keys\": [\n    ]"));
}

TEST_F(KeyStores, aTokenThatWasTakenOutSignsNothing)
{
    makeToken();
    ASSERT_EQ(run(security, {u"import"_s, path(u"cert.pem"_s)}).status, 0);
    ASSERT_EQ(importToken("1234\n").status, 0);
    ASSERT_TRUE(QDir(path(u"tokens"_s)).removeRecursively());
    ASSERT_TRUE(QDir().mkpath(path(u"tokens"_s)));
    const ToolResult refused = signItem(u"Token Corp"_s);
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(refused.error.contains(u"no such key in a token that is there"_s))
        << refused.error.toStdString();
}

TEST_F(KeyStores, aTokenIsRefusedWithAWrongPinOrAnUnknownKey)
{
    makeToken();
    EXPECT_EQ(importToken("9999\n").status, 1);
    EXPECT_EQ(importToken("1234\n", u"nothing"_s).status, 1);
    EXPECT_TRUE(importToken("1234\n").error.contains(u"has no certificate of this key"_s));
    const ToolResult shown =
        run(keychain, {u"import-token"_s, u"pkcs11:token=seal;object=signing?pin-value=1234"_s});
    EXPECT_EQ(shown.status, 1);
    EXPECT_TRUE(shown.error.contains(u"a PIN does not belong on the command line"_s));
}
