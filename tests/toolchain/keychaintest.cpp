#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using bundlebuilder::writeFile;

namespace {

/// A keychain of its own, in a login session of its own.
class Keychain : public ToolFixture {
protected:
    void SetUp() override
    {
        ToolFixture::SetUp();
        ASSERT_TRUE(m_runtime.isValid());
        m_before = qgetenv("XDG_RUNTIME_DIR");
        qputenv("XDG_RUNTIME_DIR", m_runtime.path().toUtf8());
        writeFile(path(u"right"_s), "correct horse\n");
        writeFile(path(u"wrong"_s), "battery staple");
    }

    void TearDown() override { qputenv("XDG_RUNTIME_DIR", m_before); }

    [[nodiscard]] ToolResult vault(const QStringList &arguments, const QByteArray &input = {}) const
    {
        return run(keychain, arguments, input);
    }

    [[nodiscard]] ToolResult vaultWith(const QString &command, const QString &file) const
    {
        return vault({command, u"--passphrase-file"_s, path(file)});
    }

    [[nodiscard]] QByteArray vaultFile() const
    {
        return bundlebuilder::readFile(statePath(u"keychain/vault/vault.json"_s));
    }

    [[nodiscard]] ToolResult password(const QString &command, const QStringList &more = {},
                                      const QByteArray &input = {}) const
    {
        return run(security, QStringList{command + u"-generic-password"_s, u"-s"_s, u"item"_s} + more, input);
    }

    void keepPassword() const { ASSERT_EQ(password(u"add"_s, {u"-U"_s}, "secret\n").status, 0); }

    /// Makes a certificate and its key by a program that is not ours, and PKCS#12 files of them.
    void makePkcs12(const QString &name, const QStringList &options) const
    {
        if (!QFileInfo::exists(path(u"cert.pem"_s))) {
            ASSERT_EQ(openssl({u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s, u"-subj"_s,
                               u"/CN=Imported Corp/OU=T"_s, u"-keyout"_s, path(u"key.pem"_s), u"-out"_s,
                               path(u"cert.pem"_s)}),
                      0);
        }
        ASSERT_EQ(openssl(QStringList{u"pkcs12"_s, u"-export"_s, u"-inkey"_s, path(u"key.pem"_s), u"-in"_s,
                                      path(u"cert.pem"_s), u"-out"_s, path(name)}
                          + options),
                  0);
    }

    [[nodiscard]] ToolResult import(const QString &name, const QStringList &more = {}) const
    {
        return run(security, QStringList{u"import"_s, path(name)} + more);
    }

    [[nodiscard]] int openssl(const QStringList &arguments) const
    {
        return run(u"openssl"_s, arguments).status;
    }

    [[nodiscard]] QString listing() const { return run(security, {u"find-identity"_s}).output; }

private:
    QTemporaryDir m_runtime;
    QByteArray m_before;
};

} // namespace

TEST_F(Keychain, afreshOneSaysThatNothingButTheFolderProtectsIt)
{
    makeIdentity();
    const QString status = vault({u"status"_s}).output;
    EXPECT_TRUE(status.contains(u"under a random key that lies beside it"_s));
    EXPECT_TRUE(status.contains(u"none beyond the folder's own permissions"_s));
    const auto keys = QDir(statePath(u"keychain/vault"_s)).entryInfoList({u"*.key"_s});
    ASSERT_EQ(keys.size(), 1);
    EXPECT_EQ(keys.first().permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

TEST_F(Keychain, unlockMakesOneUnderThePassphrase)
{
    EXPECT_EQ(vaultWith(u"unlock"_s, u"right"_s).status, 0);
    makeIdentity();
    EXPECT_TRUE(vault({u"status"_s}).output.contains(u"store: file, under a passphrase"_s));
    EXPECT_TRUE(QDir(statePath(u"keychain/vault"_s)).entryList({u"*.key"_s}).isEmpty());
}

TEST_F(Keychain, aLockedOneGivesNothingUntilItIsUnlocked)
{
    keepPassword();
    ASSERT_EQ(vaultWith(u"set-passphrase"_s, u"right"_s).status, 0);
    EXPECT_EQ(password(u"find"_s, {u"-w"_s}).output, u"secret\n"_s);
    ASSERT_EQ(vault({u"lock"_s}).status, 0);
    EXPECT_EQ(password(u"find"_s, {u"-w"_s}).status, 36);
    EXPECT_EQ(vaultWith(u"unlock"_s, u"wrong"_s).error, u"sealwright-keychain: the passphrase is wrong\n"_s);
    EXPECT_EQ(password(u"find"_s, {u"-w"_s}).status, 36);
    EXPECT_EQ(vault({u"unlock"_s, u"--passphrase-file"_s, u"-"_s}, "correct horse\n").status, 0);
    EXPECT_EQ(password(u"find"_s, {u"-w"_s}).output, u"secret\n"_s);
}

TEST_F(Keychain, aLockedOneStillTellsItsIdentities)
{
    makeIdentity();
    ASSERT_EQ(vaultWith(u"set-passphrase"_s, u"right"_s).status, 0);
    ASSERT_EQ(vault({u"lock"_s}).status, 0);
    EXPECT_TRUE(listing().contains(identity));
}

TEST_F(Keychain, aLockedOneSignsNothing)
{
    makeIdentity();
    ASSERT_EQ(vaultWith(u"set-passphrase"_s, u"right"_s).status, 0);
    ASSERT_EQ(vault({u"lock"_s}).status, 0);
    const ToolResult made = vault({u"make-identity"_s, u"--name"_s, u"Other (O)"_s});
    EXPECT_EQ(made.status, 1);
    EXPECT_TRUE(made.error.contains(u"the keychain is locked"_s));
}

TEST_F(Keychain, anUnlockedOneIsLockedWhenTheSessionEnds)
{
    keepPassword();
    ASSERT_EQ(vaultWith(u"set-passphrase"_s, u"right"_s).status, 0);
    QTemporaryDir otherSession;
    qputenv("XDG_RUNTIME_DIR", otherSession.path().toUtf8());
    EXPECT_EQ(password(u"find"_s, {u"-w"_s}).status, 36);
}

TEST_F(Keychain, aPassphraseMayComeAsASystemdCredential)
{
    ASSERT_TRUE(QDir().mkpath(path(u"credentials"_s)));
    writeFile(path(u"credentials/sealwright-keychain"_s), "correct horse");
    qputenv("CREDENTIALS_DIRECTORY", path(u"credentials"_s).toUtf8());
    EXPECT_EQ(vault({u"unlock"_s}).status, 0);
    qunsetenv("CREDENTIALS_DIRECTORY");
    ASSERT_EQ(vault({u"lock"_s}).status, 0);
    EXPECT_EQ(vaultWith(u"unlock"_s, u"right"_s).status, 0);
}

TEST_F(Keychain, withoutAPassphraseItCannotBeLocked)
{
    makeIdentity();
    const ToolResult result = vault({u"lock"_s});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.contains(u"under no passphrase"_s));
}

TEST_F(Keychain, aNewPassphraseHasEverythingEncryptedAnew)
{
    keepPassword();
    const QByteArray before = vaultFile();
    ASSERT_EQ(vaultWith(u"set-passphrase"_s, u"right"_s).status, 0);
    EXPECT_NE(vaultFile(), before);
    EXPECT_TRUE(QDir(statePath(u"keychain/vault"_s)).entryList({u"*.key"_s}).isEmpty());
}

TEST_F(Keychain, aChangedByteIsFound)
{
    keepPassword();
    QByteArray vaultBytes = vaultFile();
    const qsizetype at = vaultBytes.indexOf("\"sealed\"") + 40;
    vaultBytes[at] = vaultBytes[at] == 'A' ? 'B' : 'A';
    writeFile(statePath(u"keychain/vault/vault.json"_s), vaultBytes);
    const ToolResult result = password(u"find"_s, {u"-w"_s});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.error.contains(u"it has been changed or damaged"_s)) << result.error.toStdString();
}

TEST_F(Keychain, aListOfKeysThatWasChangedIsFound)
{
    makeIdentity();
    QByteArray vaultBytes = vaultFile();
    const qsizetype at = vaultBytes.indexOf("\"keys\"") + 25;
    vaultBytes[at] = vaultBytes[at] == 'a' ? 'b' : 'a';
    writeFile(statePath(u"keychain/vault/vault.json"_s), vaultBytes);
    EXPECT_EQ(vault({u"make-identity"_s, u"--name"_s, u"Other (O)"_s}).status, 1);
}

TEST_F(Keychain, passwordsAreAddedOnceAndUpdatedOnWish)
{
    EXPECT_EQ(password(u"add"_s, {u"-a"_s, u"me"_s}, "first\n").status, 0);
    EXPECT_EQ(password(u"add"_s, {u"-a"_s, u"me"_s}, "second\n").status, 45);
    EXPECT_EQ(password(u"find"_s, {u"-w"_s}).output, u"first\n"_s);
    EXPECT_EQ(password(u"add"_s, {u"-a"_s, u"me"_s, u"-U"_s}, "second\n").status, 0);
    EXPECT_EQ(password(u"add"_s, {u"-a"_s, u"you"_s}, "other\n").status, 0);
    EXPECT_EQ(password(u"find"_s, {u"-a"_s, u"you"_s, u"-w"_s}).output, u"other\n"_s);
    EXPECT_TRUE(password(u"find"_s).output.contains(u"\"acct\"<blob>=\"me\""_s));
    EXPECT_FALSE(password(u"find"_s).output.contains(u"second"_s));
}

TEST_F(Keychain, aPasswordThatIsNotThereIsStatus44)
{
    EXPECT_EQ(password(u"find"_s, {u"-w"_s}).status, 44);
    EXPECT_EQ(password(u"delete"_s).status, 44);
    keepPassword();
    EXPECT_EQ(password(u"find"_s, {u"-a"_s, u"nobody"_s}).status, 44);
    EXPECT_EQ(password(u"delete"_s).status, 0);
    EXPECT_TRUE(
        password(u"find"_s).error.contains(u"The specified item could not be found in the keychain."_s));
}

TEST_F(Keychain, aPasswordOnTheCommandLineIsRefused)
{
    const ToolResult result = password(u"add"_s, {u"-w"_s, u"geheim"_s}, "x\n");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(password(u"find"_s).status, 44);
}

TEST_F(Keychain, aPlainItemOfItsFirstFormIsStillRead)
{
    ASSERT_TRUE(QDir().mkpath(statePath(u"keychain/passwords"_s)));
    writeFile(statePath(u"keychain/passwords/item.password"_s), "old");
    EXPECT_EQ(password(u"find"_s, {u"-w"_s}).output, u"old\n"_s);
    keepPassword();
    EXPECT_FALSE(QFileInfo::exists(statePath(u"keychain/passwords/item.password"_s)));
}

TEST_F(Keychain, importsPkcs12WithOldAndNewCiphers)
{
    const QStringList secret{u"-passout"_s, u"file:"_s + path(u"right"_s)};
    makePkcs12(u"old.p12"_s,
               secret
                   + QStringList{u"-legacy"_s, u"-certpbe"_s, u"PBE-SHA1-RC2-40"_s, u"-keypbe"_s,
                                 u"PBE-SHA1-3DES"_s});
    makePkcs12(u"new.p12"_s, secret);
    makePkcs12(u"none.p12"_s, {u"-passout"_s, u"pass:"_s});
    for (const QString &name : {u"old.p12"_s, u"new.p12"_s, u"none.p12"_s}) {
        const ToolResult result = import(name, {u"--passphrase-file"_s, path(u"right"_s)});
        EXPECT_EQ(result.output, u"1 identity imported.\n"_s)
            << name.toStdString() << result.error.toStdString();
        EXPECT_TRUE(listing().contains(u"\"Imported Corp\""_s));
        EXPECT_EQ(run(security, {u"delete-identity"_s, u"-c"_s, u"Imported Corp"_s}).status, 0);
        EXPECT_FALSE(listing().contains(u"\"Imported Corp\""_s));
    }
}

TEST_F(Keychain, aWrongPassphraseImportsNothing)
{
    makePkcs12(u"new.p12"_s, {u"-passout"_s, u"file:"_s + path(u"right"_s)});
    const ToolResult result = import(u"new.p12"_s, {u"--passphrase-file"_s, path(u"wrong"_s)});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, u"security: "_s + path(u"new.p12"_s) + u": the passphrase is wrong\n"_s);
    EXPECT_FALSE(listing().contains(u"\"Imported Corp\""_s));
}

TEST_F(Keychain, anEndlessStretchingIsRefusedAtOnce)
{
    makePkcs12(u"slow.p12"_s, {u"-passout"_s, u"pass:x"_s, u"-iter"_s, u"1"_s});
    QByteArray bytes = bundlebuilder::readFile(path(u"slow.p12"_s));
    const qsizetype macIterations = bytes.lastIndexOf(QByteArray::fromHex("0202"));
    ASSERT_TRUE(macIterations > 0 || bytes.contains(QByteArray::fromHex("020101")));
    writeFile(path(u"huge.p12"_s),
              bytes.replace(QByteArray::fromHex("020101"), QByteArray::fromHex("02017f")));
    const ToolResult result = import(u"huge.p12"_s, {u"--passphrase-file"_s, path(u"right"_s)});
    EXPECT_EQ(result.status, 1);
}

TEST_F(Keychain, importsPemAndDerPieceByPiece)
{
    makePkcs12(u"unused.p12"_s, {u"-passout"_s, u"pass:x"_s});
    ASSERT_EQ(openssl({u"x509"_s, u"-in"_s, path(u"cert.pem"_s), u"-outform"_s, u"DER"_s, u"-out"_s,
                       path(u"cert.cer"_s)}),
              0);
    EXPECT_EQ(import(u"key.pem"_s).output, u"1 key imported.\n"_s);
    EXPECT_EQ(import(u"cert.cer"_s).output, u"1 identity imported.\n"_s);
    const ToolResult again = import(u"cert.pem"_s);
    EXPECT_EQ(again.status, 1);
    EXPECT_TRUE(again.error.contains(u"already exists"_s));
}

TEST_F(Keychain, importsAnEncryptedPemKey)
{
    makePkcs12(u"unused.p12"_s, {u"-passout"_s, u"pass:x"_s});
    ASSERT_EQ(openssl({u"pkcs8"_s, u"-topk8"_s, u"-in"_s, path(u"key.pem"_s), u"-out"_s,
                       path(u"locked.pem"_s), u"-passout"_s, u"file:"_s + path(u"right"_s)}),
              0);
    EXPECT_EQ(import(u"locked.pem"_s, {u"--passphrase-file"_s, path(u"wrong"_s)}).status, 1);
    EXPECT_EQ(import(u"locked.pem"_s, {u"--passphrase-file"_s, path(u"right"_s)}).output,
              u"1 key imported.\n"_s);
}

TEST_F(Keychain, whatIsNeitherIsRefusedByName)
{
    writeFile(path(u"text"_s), "hello");
    EXPECT_EQ(import(u"text"_s).error,
              u"security: "_s + path(u"text"_s) + u": neither PKCS #12 nor PEM nor DER\n"_s);
    EXPECT_EQ(import(u"nothing"_s).status, 1);
}

TEST_F(Keychain, deletingWhatIsNotThereIsStatus44)
{
    EXPECT_EQ(run(security, {u"delete-identity"_s, u"-c"_s, u"Nobody"_s}).status, 44);
    EXPECT_EQ(run(security, {u"delete-identity"_s}).status, 64);
}

TEST_F(Keychain, manyWritersLoseNothing)
{
    std::vector<std::unique_ptr<QProcess>> writers;
    for (int count = 0; count < 6; ++count) {
        writers.push_back(start(security, {u"add-generic-password"_s, u"-s"_s, u"item%1"_s.arg(count)}));
        writers.back()->write("secret\n");
        writers.back()->closeWriteChannel();
    }
    for (const auto &writer : writers)
        EXPECT_EQ(finish(*writer).status, 0);
    for (int count = 0; count < 6; ++count)
        EXPECT_EQ(
            run(security, {u"find-generic-password"_s, u"-s"_s, u"item%1"_s.arg(count), u"-w"_s}).output,
            u"secret\n"_s);
}
