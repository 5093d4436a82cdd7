// The designated requirement that a signature gets, by who has signed.

#include "formats/codesignature/requirement.h"
#include "formats/codesignature/signaturereader.h"
#include "platform/propertylist/propertylist.h"
#include "toolchain/machobuilder.h"
#include "toolchain/toolfixture.h"

#include <QCryptographicHash>

using namespace Qt::StringLiterals;
using namespace toolchain;
using namespace toolchain::codesignature;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

class SignersRequirement : public ToolFixture {
protected:
    /// A certificate in DER form, issued by itself or by one that was made before.
    [[nodiscard]] QByteArray certificate(const QString &name, const QString &subject,
                                         const QString &issuer = {}, const QString &extension = {}) const
    {
        const QString file = path(name);
        QStringList arguments{
            u"req"_s,    u"-newkey"_s,     u"ec"_s,   u"-pkeyopt"_s, u"ec_paramgen_curve:P-256"_s,
            u"-nodes"_s, u"-subj"_s,       subject,   u"-keyout"_s,  file + u".key"_s,
            u"-out"_s,   file + u".crt"_s, u"-x509"_s};
        if (!extension.isEmpty())
            arguments += {u"-addext"_s, extension};
        if (!issuer.isEmpty())
            arguments += {u"-CA"_s, path(issuer) + u".crt"_s, u"-CAkey"_s, path(issuer) + u".key"_s};
        askOpenssl(arguments);
        askOpenssl(
            {u"x509"_s, u"-in"_s, file + u".crt"_s, u"-outform"_s, u"DER"_s, u"-out"_s, file + u".der"_s});
        return readFile(file + u".der"_s);
    }

private:
    static void askOpenssl(const QStringList &arguments)
    {
        QProcess openssl;
        openssl.start(u"openssl"_s, arguments);
        EXPECT_TRUE(openssl.waitForFinished() && openssl.exitCode() == 0)
            << openssl.readAllStandardError().toStdString();
    }
};

QString requirementOf(const SignerFacts &signer)
{
    return requirementText(designatedRequirementFor(u"com.example.x"_s, signer)).valueOr(u"not printed"_s);
}

QString hashOf(const QByteArray &certificate)
{
    return u"H\"%1\""_s.arg(
        QString::fromLatin1(QCryptographicHash::hash(certificate, QCryptographicHash::Sha1).toHex()));
}

const QString name = u"identifier \"com.example.x\" and "_s;
const QString developerIdAuthority = u"1.2.840.113635.100.6.2.6=DER:0500"_s;
const QString developerAuthority = u"1.2.840.113635.100.6.2.1=DER:0500"_s;

} // namespace

TEST_F(SignersRequirement, aCertificateOfItsOwnIsNamedAsRootIfItTellsAnOrganisation)
{
    const QByteArray organised = certificate(u"a"_s, u"/O=Example/CN=Somebody"_s);
    EXPECT_EQ(requirementOf({{organised}}), name + u"certificate root = "_s + hashOf(organised));
    const QByteArray plain = certificate(u"b"_s, u"/CN=Somebody"_s);
    EXPECT_EQ(requirementOf({{plain}}), name + u"certificate leaf = "_s + hashOf(plain));
}

TEST_F(SignersRequirement, ofAStrangersChainTheLastOneOfTheLeafsOrganisationCounts)
{
    const QByteArray root = certificate(u"root"_s, u"/O=Authority/CN=Root"_s);
    const QByteArray middle = certificate(u"middle"_s, u"/O=Example/CN=Middle"_s, u"root"_s);
    const QByteArray leaf = certificate(u"leaf"_s, u"/O=Example/CN=Leaf"_s, u"middle"_s);
    EXPECT_EQ(requirementOf({{leaf, middle, root}}), name + u"certificate 1 = "_s + hashOf(middle));
    EXPECT_EQ(requirementOf({{leaf, root}}), name + u"certificate leaf = "_s + hashOf(leaf));
}

TEST_F(SignersRequirement, ofApplesChainTheIntermediateDecides)
{
    const QByteArray root = certificate(u"root"_s, u"/O=Apple Inc./CN=Root"_s);
    const QByteArray plain = certificate(u"plain"_s, u"/O=Apple Inc./CN=Plain"_s, u"root"_s);
    const QByteArray developerId = certificate(u"id"_s, u"/CN=ID"_s, u"root"_s, developerIdAuthority);
    const QByteArray development = certificate(u"dev"_s, u"/CN=Dev"_s, u"root"_s, developerAuthority);
    const QByteArray leaf = certificate(u"leaf"_s, u"/OU=TEAM123456/CN=Apple Development: X"_s, u"plain"_s);
    const QString generic = name + u"anchor apple generic and "_s;
    EXPECT_EQ(requirementOf({{leaf, developerId, root}, true}),
              generic
                  + u"certificate 1[field.1.2.840.113635.100.6.2.6] /* exists */ and certificate "
                    u"leaf[field.1.2.840.113635.100.6.1.13] /* exists */ and certificate leaf[subject.OU] = "
                    u"TEAM123456"_s);
    EXPECT_EQ(requirementOf({{leaf, development, root}, true}),
              generic
                  + u"certificate leaf[subject.CN] = \"Apple Development: X\" and certificate "
                    u"1[field.1.2.840.113635.100.6.2.1] /* exists */"_s);
    EXPECT_EQ(requirementOf({{leaf, plain, root}, true}), name + u"anchor apple"_s);
    // What looks like Apple's and does not end in Apple's root is anybody's.
    EXPECT_EQ(requirementOf({{leaf, developerId, root}}), name + u"certificate leaf = "_s + hashOf(leaf));
}

TEST_F(SignersRequirement, ofCodeSignedAdHocAllItsHashesCount)
{
    const QString app = path(u"My App.app"_s);
    const QString tool = app + u"/Contents/MacOS/tool"_s;
    bundlebuilder::makeApp(app, u"com.example.app"_s);
    writeFile(tool, bundlebuilder::universalMachO());
    ASSERT_EQ(run(codesign, {u"-s"_s, u"-"_s, u"--digest-algorithm=sha1,sha256"_s, tool}).status, 0);
    ASSERT_EQ(run(codesign, {u"-s"_s, u"-"_s, u"--deep"_s, app}).status, 0);
    const auto code = readCodeSignature(tool);
    ASSERT_TRUE(code && code->parts.size() == 2);
    QStringList hashes;
    for (const qsizetype part : {code->nativeIndex(), 1 - code->nativeIndex()}) {
        for (const CodeDirectory &directory : code->parts[part].directories)
            hashes.append(u"cdhash H\"%1\""_s.arg(QString::fromLatin1(directory.cdHash().toHex())));
    }
    const QVariantMap seal =
        platform::propertyListFromData(readFile(app + u"/Contents/_CodeSignature/CodeResources"_s))
            .valueOr({})
            .toMap();
    const QVariantMap entry = seal[u"files2"_s].toMap()[u"MacOS/tool"_s].toMap();
    EXPECT_EQ(entry[u"requirement"_s].toString(), hashes.join(u" or "_s));
    EXPECT_EQ(entry[u"cdhash"_s].toByteArray(), code->native().cdHash());
    EXPECT_EQ(run(codesign, {u"-d"_s, u"-r-"_s, tool}).output,
              u"# designated => "_s + hashes.join(u" or "_s) + u'\n');
}

TEST_F(SignersRequirement, theOneOnTheCommandLineCountsAndOldOnesAreKeptByTheByte)
{
    makeIdentity();
    const QString file = path(u"code"_s);
    writeFile(file, bundlebuilder::machO({}));
    const QString told = u"designated => identifier a.b or anchor apple"_s;
    ASSERT_EQ(run(codesign, {u"-s"_s, identity, u"-r="_s + told, file}).status, 0);
    const QString shown = u"designated => identifier \"a.b\" or anchor apple\n"_s;
    EXPECT_EQ(run(codesign, {u"-d"_s, u"-r-"_s, file}).output, shown);
    const QByteArray before = readCodeSignature(file)->native().requirements();
    ASSERT_EQ(run(codesign, {u"-f"_s, u"-s"_s, u"-"_s, u"--preserve-metadata=requirements"_s, file}).status,
              0);
    EXPECT_EQ(readCodeSignature(file)->native().requirements(), before);
    writeFile(path(u"R"_s), "designated => anchor apple");
    ASSERT_EQ(run(codesign, {u"-f"_s, u"-s"_s, identity, u"-r"_s, path(u"R"_s), file}).status, 0);
    EXPECT_EQ(run(codesign, {u"-d"_s, u"-r-"_s, file}).output, u"designated => anchor apple\n"_s);
}
