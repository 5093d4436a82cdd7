// What the notary service of this machine finds in uploads of every kind, by its logs.

#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUrl>

#include <archive.h>
#include <archive_entry.h>

using namespace Qt::StringLiterals;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

const QString nothingSigned =
    u"Package %1 has no signed executables or bundles. No tickets can be generated."_s;

class Review : public ToolFixture {
protected:
    void SetUp() override
    {
        ToolFixture::SetUp();
        makeIdentity();
        storePassword();
    }

    /// A folder of that name, empty.
    [[nodiscard]] QString folder(const QString &name) const
    {
        EXPECT_TRUE(QDir().mkpath(path(name)));
        return path(name);
    }

    void signForRelease(const QString &item) const
    {
        const ToolResult signing =
            run(codesign, {u"--deep"_s, u"-o"_s, u"runtime"_s, u"--timestamp"_s, u"-s"_s, identity, item});
        ASSERT_EQ(signing.status, 0) << signing.error.toStdString();
    }

    [[nodiscard]] QString signedApp(const QString &where) const
    {
        const QString app = where + u"/App.app"_s;
        bundlebuilder::makeApp(app, u"com.example.app"_s);
        signForRelease(app);
        return app;
    }

    [[nodiscard]] QString zipOf(const QString &item) const
    {
        const QString archive = path(u"Upload.zip"_s);
        EXPECT_EQ(pack(item, archive).status, 0);
        return archive;
    }

    /// The log of an upload that has been decided.
    [[nodiscard]] QJsonObject logOf(const QString &archive) const
    {
        const QString report = pollToTheEnd(uuidIn(upload(archive))).output;
        const QString url = QRegularExpression(u"(?m)LogFileURL: (.+?)$"_s).match(report).captured(1);
        return QJsonDocument::fromJson(readFile(QUrl(url).toLocalFile())).object();
    }

    /// "PATH ARCHITECTURE MESSAGE" for each issue.
    [[nodiscard]] QStringList issuesOf(const QString &archive) const
    {
        QStringList issues;
        for (const QJsonValue &issue : logOf(archive)[u"issues"].toArray())
            issues.append(u"%1 %2 %3"_s.arg(issue[u"path"].toString(),
                                            issue[u"architecture"].toString(u"-"_s),
                                            issue[u"message"].toString()));
        return issues;
    }

    /// The paths for which a ticket speaks.
    [[nodiscard]] QStringList vouchedFor(const QString &archive) const
    {
        QStringList paths;
        for (const QJsonValue &entry : logOf(archive)[u"ticketContents"].toArray())
            paths.append(entry[u"path"].toString());
        return paths;
    }

    /// Files by their paths.
    using Files = QList<QPair<QByteArray, QByteArray>>;

    static void write(archive *into, const QString &path, const Files &files)
    {
        ASSERT_EQ(archive_write_open_filename(into, QFile::encodeName(path).constData()), ARCHIVE_OK);
        for (const auto &[name, contents] : files) {
            const std::unique_ptr<archive_entry, decltype(&archive_entry_free)> entry(archive_entry_new(),
                                                                                      archive_entry_free);
            archive_entry_set_pathname(entry.get(), name.constData());
            archive_entry_set_filetype(entry.get(), AE_IFREG);
            archive_entry_set_perm(entry.get(), 0755);
            archive_entry_set_size(entry.get(), contents.size());
            ASSERT_EQ(archive_write_header(into, entry.get()), ARCHIVE_OK);
            archive_write_data(into, contents.constData(), std::size_t(contents.size()));
        }
        ASSERT_EQ(archive_write_close(into), ARCHIVE_OK);
    }

    static void makePackage(const QString &package, const Files &files)
    {
        const std::unique_ptr<archive, decltype(&archive_write_free)> xar(archive_write_new(),
                                                                          archive_write_free);
        archive_write_set_format_xar(xar.get());
        write(xar.get(), package, files);
    }

    /// What a component of a package installs.
    [[nodiscard]] QByteArray payloadOf(const Files &files) const
    {
        const std::unique_ptr<archive, decltype(&archive_write_free)> payload(archive_write_new(),
                                                                              archive_write_free);
        archive_write_set_format_cpio(payload.get());
        archive_write_add_filter_gzip(payload.get());
        write(payload.get(), path(u"payload"_s), files);
        return readFile(path(u"payload"_s));
    }

    /// A signed package of that path.
    void makeSignedPackage(const QString &package,
                           const Files &files = {{"PackageInfo", "<pkg-info/>"}}) const
    {
        const QString installer = u"Developer ID Installer: "_s + holder;
        ASSERT_EQ(
            run(keychain, {u"make-identity"_s, u"--kind"_s, u"installer"_s, u"--name"_s, holder}).status, 0);
        makePackage(path(u"unsigned.pkg"_s), files);
        const ToolResult signing =
            run(u"/usr/bin/productsign"_s,
                {u"--sign"_s, installer, u"--timestamp"_s, path(u"unsigned.pkg"_s), package});
        ASSERT_EQ(signing.status, 0) << signing.error.toStdString();
    }
};

} // namespace

TEST_F(Review, anArchiveWithoutAnythingToVouchForIsRefused)
{
    const QString items = folder(u"Items"_s);
    writeFile(items + u"/readme.txt"_s, "nothing that runs");
    const QString archive = zipOf(items);
    const QJsonObject log = logOf(archive);
    EXPECT_EQ(log[u"status"].toString(), u"Invalid"_s);
    EXPECT_EQ(issuesOf(archive), QStringList(u"Upload.zip - "_s + nothingSigned.arg(u"Upload.zip"_s)));
    QByteArray empty = "PK\5\6";
    empty.resize(22, '\0');
    writeFile(path(u"Empty.zip"_s), empty);
    EXPECT_EQ(issuesOf(path(u"Empty.zip"_s)),
              QStringList(u"Empty.zip - "_s + nothingSigned.arg(u"Empty.zip"_s)));
}

TEST_F(Review, aSignedContainerWithoutCodeIsVouchedForWithAWarning)
{
    const QString package = path(u"Texts.pkg"_s);
    makeSignedPackage(package);
    const QString items = folder(u"Items"_s);
    writeFile(items + u"/readme.txt"_s, "nothing that runs");
    const QString image = path(u"Texts.dmg"_s);
    ASSERT_EQ(run(u"/usr/bin/hdiutil"_s, {u"create"_s, image, u"-srcfolder"_s, items}).status, 0);
    ASSERT_EQ(run(codesign, {u"-s"_s, identity, u"--timestamp"_s, image}).status, 0);
    for (const QString &container : {package, image}) {
        const QString name = QFileInfo(container).fileName();
        const QJsonObject log = logOf(container);
        EXPECT_EQ(log[u"status"].toString(), u"Accepted"_s);
        EXPECT_EQ(log[u"ticketContents"][0][u"path"].toString(), name);
        ASSERT_EQ(log[u"issues"].toArray().size(), 1);
        EXPECT_EQ(log[u"issues"][0][u"severity"].toString(), u"warning"_s);
        EXPECT_EQ(
            log[u"issues"][0][u"message"].toString(),
            u"Package %1 has no signed executables or bundles. Apple's notary service may refuse it."_s.arg(
                name));
    }
}

TEST_F(Review, anImageWithinAnArchiveIsVouchedForAndCanBeStapled)
{
    const QString app = signedApp(folder(u"Source"_s));
    const QString items = folder(u"Items"_s);
    const QString image = items + u"/Inner.dmg"_s;
    ASSERT_EQ(run(u"/usr/bin/hdiutil"_s,
                  {u"create"_s, image, u"-volname"_s, u"V"_s, u"-srcfolder"_s, QFileInfo(app).path()})
                  .status,
              0);
    ASSERT_EQ(run(codesign, {u"-s"_s, identity, u"--timestamp"_s, image}).status, 0);
    const QStringList paths = vouchedFor(zipOf(items));
    EXPECT_TRUE(paths.contains(u"Upload.zip/Items/Inner.dmg"_s)) << paths.join(u'\n').toStdString();
    EXPECT_TRUE(paths.contains(u"Upload.zip/Items/Inner.dmg/App.app/Contents/MacOS/App"_s));
    const ToolResult stapling = run(xcrun, {u"stapler"_s, u"staple"_s, image});
    EXPECT_EQ(stapling.status, 0) << stapling.output.toStdString();
}

TEST_F(Review, aContainerWithinAnArchiveThatCannotBeReadIsRefused)
{
    const QString items = folder(u"Items"_s);
    const QString image = items + u"/Inner.dmg"_s;
    ASSERT_EQ(run(u"/usr/bin/hdiutil"_s, {u"create"_s, image, u"-srcfolder"_s, signedApp(items)}).status, 0);
    QByteArray bytes = readFile(image);
    bytes.replace(0, bytes.size() / 3, QByteArray(bytes.size() / 3, 'x'));
    writeFile(image, bytes);
    writeFile(items + u"/Inner.pkg"_s, "xar! and nothing more");
    const QStringList issues = issuesOf(zipOf(items));
    ASSERT_EQ(issues.size(), 2) << issues.join(u'\n').toStdString();
    EXPECT_TRUE(issues.first().startsWith(u"Upload.zip/Items/Inner.dmg - The archive cannot be read: "_s));
    EXPECT_TRUE(issues.last().startsWith(u"Upload.zip/Items/Inner.pkg - The archive cannot be read: "_s));
    EXPECT_EQ(logOf(path(u"Upload.zip"_s))[u"status"].toString(), u"Invalid"_s);
}

TEST_F(Review, aPackageWithinAnArchiveIsVouchedForIfItsSignatureHolds)
{
    const QString items = folder(u"Items"_s);
    const QString package = items + u"/Inner.pkg"_s;
    makeSignedPackage(package);
    static_cast<void>(signedApp(items));
    EXPECT_TRUE(vouchedFor(zipOf(items)).contains(u"Upload.zip/Items/Inner.pkg"_s));
    EXPECT_EQ(run(xcrun, {u"stapler"_s, u"staple"_s, package}).status, 0);
    writeFile(package,
              readFile(path(u"unsigned.pkg"_s))); // one without a signature is taken with what lies in it
    const QStringList paths = vouchedFor(zipOf(items));
    EXPECT_FALSE(paths.isEmpty());
    EXPECT_FALSE(paths.contains(u"Upload.zip/Items/Inner.pkg"_s));
}

TEST_F(Review, whatLiesInAComponentIsToldAsInLogsOfTheRealService)
{
    const QByteArray part = payloadOf({{"./usr/local/bin/tool", bundlebuilder::universalMachO()}});
    makeSignedPackage(path(u"Product.pkg"_s),
                      {{"Distribution", "<installer-gui-script/>"},
                       {"Part.pkg/PackageInfo", "<pkg-info/>"},
                       {"Part.pkg/Payload", part}});
    const QString unsignedTool =
        u"Product.pkg/Part.pkg Contents/Payload/usr/local/bin/tool %1 The binary is not signed."_s;
    EXPECT_EQ(issuesOf(path(u"Product.pkg"_s)),
              (QStringList{unsignedTool.arg(u"x86_64"_s), unsignedTool.arg(u"arm64"_s)}));
    const QString items = folder(u"Items"_s);
    ASSERT_TRUE(QFile::copy(path(u"Product.pkg"_s), items + u"/Product.pkg"_s));
    writeFile(items + u"/PackageInfo"_s, "of nothing");
    EXPECT_EQ(issuesOf(zipOf(items)).first(), u"Upload.zip/Items/"_s + unsignedTool.arg(u"x86_64"_s));
}

TEST_F(Review, aBundleIsVouchedForBesideItsExecutable)
{
    const QStringList paths = vouchedFor(zipOf(signedApp(folder(u"Source"_s))));
    const QString app = u"Upload.zip/App.app"_s;
    const QString framework = app + u"/Contents/Frameworks/Inner.framework/Versions/A"_s;
    EXPECT_EQ(paths.count(app), 2) << "for two architectures";
    EXPECT_EQ(paths.count(app + u"/Contents/MacOS/App"_s), 2);
    EXPECT_EQ(paths.count(framework), 1);
    EXPECT_EQ(paths.count(framework + u"/Inner"_s), 1);
}

TEST_F(Review, aPackageWithinAnArchiveWhoseSignatureDoesNotHoldIsRefused)
{
    const QString items = folder(u"Items"_s);
    const QString package = items + u"/Inner.pkg"_s;
    makeSignedPackage(package);
    QByteArray bytes = readFile(package);
    bytes.back() = char(bytes.back() + 1);
    writeFile(package, bytes);
    const QString inner = u"Upload.zip/Items/Inner.pkg - "_s;
    EXPECT_TRUE(issuesOf(zipOf(items)).contains(inner + u"The signature of the binary is invalid."_s));
}

TEST_F(Review, eachArchitectureWhoseSignatureDoesNotHoldIsNamed)
{
    const QString app = signedApp(folder(u"Source"_s));
    writeFile(app + u"/Contents/Info.plist"_s, readFile(app + u"/Contents/Info.plist"_s) + "\n");
    const QString executable = u"Upload.zip/App.app/Contents/MacOS/App "_s;
    const QString invalid = u" The signature of the binary is invalid."_s;
    EXPECT_EQ(issuesOf(zipOf(app)),
              (QStringList{executable + u"x86_64"_s + invalid, executable + u"arm64"_s + invalid}));
}

TEST_F(Review, anArchiveInTooManyOthersIsTold)
{
    QString item = folder(u"Items"_s);
    writeFile(item + u"/tool"_s, bundlebuilder::universalMachO());
    for (int level = 0; level < 6; ++level) {
        const QString around = folder(u"Level%1"_s.arg(level));
        ASSERT_EQ(pack(item, around + u"/inner.zip"_s).status, 0);
        item = around;
    }
    const QStringList issues = issuesOf(zipOf(item));
    EXPECT_TRUE(issues.join(u'\n').contains(u" - The archive lies in too many others to be looked into."_s))
        << issues.join(u'\n').toStdString();
}
