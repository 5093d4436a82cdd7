#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QRegularExpression>
#include <QUrl>
#include <QtEndian>

#include <archive.h>
#include <archive_entry.h>

using namespace Qt::StringLiterals;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

using Contents = QMap<QString, QByteArray>;

void writeXar(const QString &path, const Contents &contents)
{
    const std::unique_ptr<archive, decltype(&archive_write_free)> xar(archive_write_new(),
                                                                      archive_write_free);
    ASSERT_EQ(archive_write_set_format_xar(xar.get()), ARCHIVE_OK);
    ASSERT_EQ(archive_write_open_filename(xar.get(), QFile::encodeName(path).constData()), ARCHIVE_OK);
    for (auto file = contents.begin(); file != contents.end(); ++file) {
        const std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry(archive_entry_new(),
                                                                                  archive_entry_free);
        archive_entry_set_pathname_utf8(entry.get(), file.key().toUtf8().constData());
        archive_entry_set_filetype(entry.get(), AE_IFREG);
        archive_entry_set_perm(entry.get(), 0644);
        archive_entry_set_size(entry.get(), file->size());
        ASSERT_EQ(archive_write_header(xar.get(), entry.get()), ARCHIVE_OK);
        ASSERT_EQ(archive_write_data(xar.get(), file->constData(), std::size_t(file->size())), file->size());
    }
    ASSERT_EQ(archive_write_close(xar.get()), ARCHIVE_OK);
}

/// What libarchive, which compares checksums, finds in a xar archive; nothing if it finds fault with it.
Contents contentsOf(const QString &path)
{
    const std::unique_ptr<archive, decltype(&archive_read_free)> xar(archive_read_new(), archive_read_free);
    archive_read_support_format_xar(xar.get());
    archive_read_support_filter_all(xar.get());
    if (archive_read_open_filename(xar.get(), QFile::encodeName(path).constData(), 1 << 16) != ARCHIVE_OK)
        return {};
    Contents contents;
    archive_entry *entry = nullptr;
    int result = ARCHIVE_OK;
    while ((result = archive_read_next_header(xar.get(), &entry)) == ARCHIVE_OK) {
        QByteArray bytes(archive_entry_size(entry), '\0');
        if (archive_read_data(xar.get(), bytes.data(), std::size_t(bytes.size())) != bytes.size())
            return {};
        contents.insert(QString::fromUtf8(archive_entry_pathname_utf8(entry)), bytes);
    }
    return result == ARCHIVE_EOF ? contents : Contents();
}

class Packages : public ToolFixture {
protected:
    static inline const QString productsign = u"/usr/bin/productsign"_s;
    static inline const QString installer = u"Developer ID Installer: Example Corp (A1B2C3D4E5)"_s;

    void SetUp() override
    {
        ToolFixture::SetUp();
        storePassword();
        ASSERT_EQ(
            run(keychain, {u"make-identity"_s, u"--kind"_s, u"installer"_s, u"--name"_s, holder}).status, 0);
        writeXar(package(), contents);
    }

    [[nodiscard]] QString package() const { return path(u"My App.pkg"_s); }
    [[nodiscard]] QString signedPackage() const { return path(u"Signed.pkg"_s); }

    [[nodiscard]] ToolResult signPackage(const QString &input, const QString &output) const
    {
        return run(productsign, {u"--sign"_s, installer, input, output});
    }
    void makeSigned() const { ASSERT_EQ(signPackage(package(), signedPackage()).status, 0); }

    [[nodiscard]] ToolResult assess(const QString &package, const QString &type = u"install"_s) const
    {
        return run(spctl, {u"--assess"_s, u"--type"_s, type, u"-vv"_s, package});
    }
    [[nodiscard]] bool isApproved(const QString &package) const
    {
        return pollToTheEnd(uuidIn(upload(package))).output.contains(u"Status: success"_s);
    }

    /// The message of the log that goes with a refusal.
    [[nodiscard]] QString objectionTo(const QString &package) const
    {
        const QString report = pollToTheEnd(uuidIn(upload(package))).output;
        EXPECT_TRUE(report.contains(u"Status: invalid"_s)) << report.toStdString();
        const QString url = QRegularExpression(u"(?m)LogFileURL: (.+?)$"_s).match(report).captured(1);
        const QJsonObject log = QJsonDocument::fromJson(readFile(QUrl(url).toLocalFile())).object();
        return log[u"issues"][0][u"message"].toString();
    }

    const Contents contents{{u"PackageInfo"_s, "<pkg-info/>"},
                            {u"Payload"_s, QByteArray("payload ").repeated(20'000)},
                            {u"Scripts"_s, QByteArray()}};
};

struct Header {
    qsizetype size = 0;
    qsizetype packedTable = 0;
    quint32 table = 0;
};

Header headerOf(const QByteArray &xar)
{
    return {qFromBigEndian<quint16>(xar.constData() + 4),
            qsizetype(qFromBigEndian<quint64>(xar.constData() + 8)),
            qFromBigEndian<quint32>(xar.constData() + 20)};
}

QByteArray packedTableOf(const QByteArray &xar)
{
    const Header header = headerOf(xar);
    return xar.mid(header.size, header.packedTable);
}

/// The table of contents as XML; qUncompress wants its length in front.
QString tableOf(const QByteArray &xar)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(headerOf(xar).table, bytes.data());
    return QString::fromUtf8(qUncompress(bytes + packedTableOf(xar)));
}

QByteArray heapOf(const QByteArray &xar)
{
    const Header header = headerOf(xar);
    return xar.mid(header.size + header.packedTable);
}

constexpr qsizetype checksumSize = 20; // SHA-1
constexpr qsizetype signatureSize = 256; // an RSA key of 2048 bits

} // namespace

TEST_F(Packages, aSignedPackageHoldsTheSameFiles)
{
    const ToolResult result = signPackage(package(), signedPackage());
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_TRUE(
        result.output.endsWith(u"productsign: Wrote signed product archive to "_s + signedPackage() + u'\n'));
    EXPECT_EQ(contentsOf(package()), contents);
    EXPECT_EQ(contentsOf(signedPackage()), contents);
    EXPECT_EQ(run(u"7z"_s, {u"t"_s, u"-txar"_s, signedPackage()}).status, 0);
}

TEST_F(Packages, theSignatureIsAnRsaSignatureOfTheTablesChecksum)
{
    makeSigned();
    const QByteArray bytes = readFile(signedPackage());
    EXPECT_EQ(heapOf(bytes).first(checksumSize),
              QCryptographicHash::hash(packedTableOf(bytes), QCryptographicHash::Sha1));
    const QRegularExpression place(
        u"<signature style=\"RSA\">\\s*<offset>20</offset>\\s*<size>256</size>.*?<X509Certificate>(.*?)</X509Certificate>"_s,
        QRegularExpression::DotMatchesEverythingOption);
    const QString certificate = place.match(tableOf(bytes)).captured(1);
    writeFile(path(u"certificate"_s), QByteArray::fromBase64(certificate.toLatin1()));
    writeFile(path(u"table"_s), packedTableOf(bytes));
    writeFile(path(u"signature"_s), heapOf(bytes).mid(checksumSize, signatureSize));
    const ToolResult key =
        run(u"openssl"_s,
            {u"x509"_s, u"-inform"_s, u"DER"_s, u"-in"_s, path(u"certificate"_s), u"-pubkey"_s, u"-noout"_s});
    writeFile(path(u"key"_s), key.output.toLatin1());
    const ToolResult verified = run(u"openssl"_s,
                                    {u"dgst"_s, u"-sha1"_s, u"-verify"_s, path(u"key"_s), u"-signature"_s,
                                     path(u"signature"_s), path(u"table"_s)});
    EXPECT_EQ(verified.output, u"Verified OK\n"_s) << verified.error.toStdString();
}

TEST_F(Packages, anOlderSignatureIsReplaced)
{
    makeSigned();
    ASSERT_EQ(signPackage(signedPackage(), path(u"Again.pkg"_s)).status, 0);
    EXPECT_EQ(contentsOf(path(u"Again.pkg"_s)), contents);
    EXPECT_EQ(tableOf(readFile(path(u"Again.pkg"_s))).count(u"<signature "_s), 1);
    EXPECT_EQ(QFileInfo(path(u"Again.pkg"_s)).size(), QFileInfo(signedPackage()).size());
}

TEST_F(Packages, aDistributionMakesAPackageToo)
{
    writeXar(package(), {{u"Distribution"_s, "<installer-gui-script/>"}, {u"part.pkg/Payload"_s, "bytes"}});
    makeSigned();
    EXPECT_EQ(contentsOf(signedPackage()), contentsOf(package()));
    EXPECT_TRUE(isApproved(signedPackage()));
}

TEST_F(Packages, refusesWhatIsNoSoundPackage)
{
    const auto refusal = [this](const QString &input) {
        const ToolResult result = signPackage(input, signedPackage());
        EXPECT_EQ(result.status, 1);
        EXPECT_FALSE(QFileInfo::exists(signedPackage()));
        return result.error;
    };
    EXPECT_TRUE(refusal(path(u"none.pkg"_s)).contains(u"does not exist"_s));
    writeFile(path(u"text.pkg"_s), "xar! is how it begins");
    EXPECT_TRUE(refusal(path(u"text.pkg"_s)).contains(u"not a xar archive, or a damaged one"_s));
    writeXar(path(u"other.pkg"_s), {{u"file"_s, "bytes"}});
    EXPECT_TRUE(refusal(path(u"other.pkg"_s)).contains(u"neither a Distribution nor a PackageInfo"_s));
    QByteArray bytes = readFile(package());
    const qsizetype firstFile = headerOf(bytes).size + headerOf(bytes).packedTable + checksumSize;
    bytes[firstFile] = char(bytes[firstFile] + 1);
    writeFile(path(u"changed.pkg"_s), bytes);
    EXPECT_TRUE(refusal(path(u"changed.pkg"_s)).contains(u"is damaged: "_s));
    writeFile(path(u"short.pkg"_s), bytes.first(firstFile + 1));
    EXPECT_TRUE(refusal(path(u"short.pkg"_s)).contains(u"not a xar archive, or a damaged one"_s));
}

TEST_F(Packages, noChangedByteOfTheTableBringsItDown)
{
    const QByteArray whole = readFile(package());
    const qsizetype end = headerOf(whole).size + headerOf(whole).packedTable + checksumSize;
    for (qsizetype place = 0; place < end; place += 7) {
        QByteArray bytes = whole;
        bytes[place] = char(bytes[place] ^ 0x41);
        writeFile(path(u"changed.pkg"_s), bytes);
        EXPECT_LE(signPackage(path(u"changed.pkg"_s), signedPackage()).status, 1) << place;
    }
}

TEST_F(Packages, anUnknownIdentityIsAnError)
{
    makeIdentity();
    for (const QString &name :
         {u"Developer ID Installer: Nobody"_s, identity, QString(u"Developer ID Application"_s)}) {
        const ToolResult result = run(productsign, {u"--sign"_s, name, package(), signedPackage()});
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(result.error.startsWith(
            u"productsign: error: Could not find appropriate signing identity for \"%1\""_s.arg(name)));
        EXPECT_FALSE(QFileInfo::exists(signedPackage()));
    }
}

TEST_F(Packages, refusesArgumentsThatMeanNothing)
{
    for (const QStringList &arguments : {QStringList{},
                                         {u"--sign"_s, installer},
                                         {u"--sign"_s, installer, package()},
                                         {package(), signedPackage()},
                                         {u"--sign"_s, installer, package(), signedPackage(), u"more"_s}})
        EXPECT_EQ(run(productsign, arguments).status, 64) << arguments.join(u' ').toStdString();
    const ToolResult unbuilt =
        run(productsign, {u"--component"_s, u"x"_s, u"--sign"_s, installer, package(), signedPackage()});
    EXPECT_EQ(unbuilt.status, 2);
    EXPECT_TRUE(unbuilt.error.contains(u"'--component'"_s));
    EXPECT_TRUE(run(productsign, {u"--help"_s}).output.startsWith(u"Usage: productsign"_s));
}

TEST_F(Packages, anUnsignedPackageHasNoUsableSignature)
{
    const ToolResult result = assess(package());
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(result.error, package() + u": rejected\nsource=no usable signature\n"_s);
}

TEST_F(Packages, aSignedPackageIsAcceptedOnceItIsApproved)
{
    makeSigned();
    EXPECT_EQ(assess(signedPackage()).error,
              signedPackage() + u": rejected\nsource=Unnotarized Developer ID of this machine\norigin="_s
                  + installer + u'\n');
    ASSERT_TRUE(isApproved(signedPackage()));
    const ToolResult result = assess(signedPackage());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error,
              signedPackage() + u": accepted\nsource=Notarized Developer ID of this machine\norigin="_s
                  + installer + u'\n');
    EXPECT_EQ(assess(signedPackage(), u"open"_s).status, 3);
}

TEST_F(Packages, aPackageChangedAfterItsApprovalIsRejected)
{
    makeSigned();
    ASSERT_TRUE(isApproved(signedPackage()));
    QByteArray bytes = readFile(signedPackage());
    bytes.back() = char(bytes.back() + 1);
    writeFile(signedPackage(), bytes);
    EXPECT_EQ(assess(signedPackage()).error,
              signedPackage() + u": rejected\nsource=the file \"Payload\" is damaged\n"_s);
}

TEST_F(Packages, aSignatureOfOtherBytesIsRejectedAndNotApproved)
{
    makeSigned();
    QByteArray bytes = readFile(signedPackage());
    const qsizetype place =
        headerOf(bytes).size + headerOf(bytes).packedTable + checksumSize + signatureSize / 2;
    bytes[place] = char(bytes[place] + 1);
    writeFile(signedPackage(), bytes);
    EXPECT_EQ(assess(signedPackage()).error,
              signedPackage() + u": rejected\nsource=the RSA signature is invalid\n"_s);
    EXPECT_EQ(objectionTo(signedPackage()), u"The signature of the binary is invalid."_s);
}

TEST_F(Packages, theNotaryRefusesAPackageThatIsNotSignedOrDamaged)
{
    EXPECT_EQ(objectionTo(package()), u"The binary is not signed."_s);
    makeSigned();
    QByteArray bytes = readFile(signedPackage());
    bytes.back() = char(bytes.back() + 1);
    writeFile(signedPackage(), bytes);
    EXPECT_EQ(objectionTo(signedPackage()), u"The signature of the binary is invalid."_s);
}
