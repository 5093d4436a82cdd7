#include "toolchain/bundlebuilder.h"
#include "toolchain/diskimagefixture.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUrl>
#include <QtEndian>

using namespace Qt::StringLiterals;
using bundlebuilder::readFile;
using bundlebuilder::writeFile;

namespace {

class ImageSigning : public DiskImageFixture {
protected:
    /// As a release is signed: with a time stamp, which the notary wants.
    [[nodiscard]] ToolResult signForRelease(const QString &item, const QStringList &options = {}) const
    {
        return run(codesign,
                   options + QStringList{u"-o"_s, u"runtime"_s, u"--timestamp"_s, u"-s"_s, identity, item});
    }

    [[nodiscard]] ToolResult verify(const QString &item) const
    {
        return run(codesign, {u"--verify"_s, u"--strict"_s, item});
    }

    /// With an identity of its own, over the signature that is there.
    [[nodiscard]] ToolResult signByAnother(const QString &image) const
    {
        const ToolResult made = run(keychain, {u"make-identity"_s, u"--name"_s, u"Another (N0TTHESAME)"_s});
        return made.status == 0 ? run(codesign, {u"--force"_s, u"-s"_s, u"Another (N0TTHESAME)"_s, image})
                                : made;
    }

    void SetUp() override
    {
        DiskImageFixture::SetUp();
        makeIdentity();
        storePassword();
        bundlebuilder::makeApp(app(), u"com.example.app"_s);
        ASSERT_EQ(signForRelease(app(), {u"--deep"_s}).status, 0);
    }

    [[nodiscard]] QString folder() const { return path(u"folder"_s); }
    [[nodiscard]] QString app() const { return folder() + u"/My App.app"_s; }

    /// An image of the folder that holds the app.
    [[nodiscard]] QString image() const { return imageOf(folder()); }

    [[nodiscard]] ToolResult staple(const QString &item, const QString &action = u"staple"_s) const
    {
        return run(xcrun, {u"stapler"_s, action, u"-v"_s, item});
    }

    [[nodiscard]] ToolResult assess(const QString &image, const QString &type = u"open"_s) const
    {
        return run(spctl,
                   {u"--assess"_s, u"--type"_s, type, u"--context"_s, u"context:primary-signature"_s,
                    u"-vv"_s, image});
    }

    [[nodiscard]] bool isApproved(const QString &image) const
    {
        return pollToTheEnd(uuidIn(upload(image))).output.contains(u"Status: success"_s);
    }

    /// The messages of the log that goes with a refusal, by their paths.
    [[nodiscard]] QMap<QString, QString> issuesOfRefusal(const QString &image) const
    {
        const QString report = pollToTheEnd(uuidIn(upload(image))).output;
        EXPECT_TRUE(report.contains(u"Status: invalid"_s)) << report.toStdString();
        const QString url = QRegularExpression(u"(?m)LogFileURL: (.+?)$"_s).match(report).captured(1);
        const QJsonObject log = QJsonDocument::fromJson(readFile(QUrl(url).toLocalFile())).object();
        QMap<QString, QString> issues;
        for (const QJsonValue &issue : log[u"issues"].toArray())
            issues[issue[u"path"].toString()] = issue[u"message"].toString();
        return issues;
    }

    /// What the trailer says stands in the place of the code signature.
    [[nodiscard]] static QByteArray signatureIn(const QString &image)
    {
        constexpr qsizetype trailerSize = 512;
        constexpr qsizetype placeOffset = 296;
        const QByteArray bytes = readFile(image);
        const QByteArray place = bytes.last(trailerSize).mid(placeOffset, 16);
        return bytes.mid(qFromBigEndian<qint64>(place.constData()),
                         qFromBigEndian<qint64>(place.constData() + 8));
    }

    /// Every program that reads images finds the same files in it.
    void expectReadable(const QString &image) const
    {
        EXPECT_EQ(run(hdiutil, {u"verify"_s, image}).status, 0);
        EXPECT_TRUE(runProgram(u"7z"_s, {u"t"_s, u"-tdmg"_s, image}).output.contains(u"Everything is Ok"_s));
        EXPECT_EQ(readFile(unpacked(image) + u"/My App.app/Contents/MacOS/My App"_s),
                  readFile(app() + u"/Contents/MacOS/My App"_s));
    }
};

} // namespace

TEST_F(ImageSigning, aSignedImageStaysReadable)
{
    const QString image = this->image();
    const ToolResult result = sign(image);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error, image + u": signed disk image [folder]\n"_s);
    EXPECT_TRUE(signatureIn(image).startsWith("\xfa\xde\x0c\xc0"_ba)) << "an embedded signature";
    expectReadable(image);
}

TEST_F(ImageSigning, theSignatureCoversEverythingBeforeIt)
{
    const QString image = this->image();
    const qsizetype covered = readFile(image).size() - 512; // all but the trailer
    ASSERT_EQ(sign(image).status, 0);
    EXPECT_EQ(verify(image).status, 0);
    const QByteArray good = readFile(image);
    for (const qsizetype place : {qsizetype(0), covered / 2, covered - 1, good.size() - 100}) {
        QByteArray changed = good;
        changed[place] = char(changed[place] ^ 1);
        writeFile(image, changed);
        EXPECT_EQ(verify(image).status, 1) << place;
    }
}

TEST_F(ImageSigning, aSignedImageIsLeftAloneWithoutForce)
{
    const QString image = this->image();
    ASSERT_EQ(sign(image).status, 0);
    const QByteArray before = readFile(image);
    const ToolResult again = sign(image);
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.error, image + u": is already signed\n"_s);
    EXPECT_EQ(readFile(image), before);
    EXPECT_EQ(signByAnother(image).status, 0);
    EXPECT_NE(readFile(image), before);
    expectReadable(image);
}

TEST_F(ImageSigning, aFileThatOnlyEndsAsAnImageDoesIsNotStapled)
{
    writeFile(path(u"image.dmg"_s), QByteArray("koly") + QByteArray(508, '\0'));
    EXPECT_NE(staple(path(u"image.dmg"_s)).status, 0);
}

TEST_F(ImageSigning, aDamagedSignatureIsReplacedOnlyByForce)
{
    const QString image = this->image();
    ASSERT_EQ(sign(image).status, 0);
    QByteArray bytes = readFile(image);
    bytes.replace(signatureIn(image), QByteArray(signatureIn(image).size(), '\xfa'));
    writeFile(image, bytes);
    EXPECT_NE(verify(image).status, 0);
    EXPECT_EQ(sign(image, {u"--force"_s}).status, 0);
    EXPECT_EQ(verify(image).status, 0);
    expectReadable(image);
}

TEST_F(ImageSigning, theNotaryApprovesAnImageWithASealedBundle)
{
    const QString image = this->image();
    ASSERT_EQ(signForRelease(image).status, 0);
    EXPECT_TRUE(isApproved(image));
}

TEST_F(ImageSigning, theNotaryPassesOverWhatLiesBesideTheBundles)
{
    writeFile(folder() + u"/Read Me.txt"_s, "text");
    writeFile(folder() + u"/.background/picture.png"_s, "picture");
    ASSERT_TRUE(QFile::link(u"/Applications"_s, folder() + u"/Applications"_s));
    EXPECT_TRUE(isApproved(image()));
}

TEST_F(ImageSigning, theNotaryRefusesAnImageWhoseBundleHasBeenChanged)
{
    writeFile(app() + u"/Contents/Resources/Größe.txt"_s, "changed");
    const QStringList messages = issuesOfRefusal(image()).values();
    EXPECT_TRUE(messages.contains(u"The signature of the binary is invalid."_s))
        << messages.join(u'\n').toStdString();
}

TEST_F(ImageSigning, theNotaryRefusesAnImageWhoseBundleHasNoSeal)
{
    ASSERT_TRUE(QDir(app() + u"/Contents/_CodeSignature"_s).removeRecursively());
    EXPECT_FALSE(issuesOfRefusal(image()).isEmpty());
}

TEST_F(ImageSigning, theNotaryHasNothingAgainstAnImageWithoutCode)
{
    writeFile(path(u"plain/file"_s), "bytes");
    EXPECT_TRUE(isApproved(imageOf(path(u"plain"_s))));
}

TEST_F(ImageSigning, theNotaryRefusesADamagedImage)
{
    const QString image = this->image();
    QByteArray bytes = readFile(image);
    bytes.replace(0, bytes.size() / 3, QByteArray(bytes.size() / 3, 'x'));
    writeFile(image, bytes);
    EXPECT_TRUE(issuesOfRefusal(image).value(u"folder.dmg"_s).startsWith(u"The archive cannot be read: "_s));
}

TEST_F(ImageSigning, aStapledImageStaysReadableAndKeepsItsSignature)
{
    const QString image = this->image();
    ASSERT_EQ(signForRelease(image).status, 0);
    ASSERT_TRUE(isApproved(image));
    EXPECT_EQ(staple(image, u"validate"_s).status, 65);
    const ToolResult result = staple(image);
    EXPECT_EQ(result.status, 0) << result.error.toStdString();
    EXPECT_TRUE(result.output.endsWith(u"The staple and validate action worked!\n"_s));
    EXPECT_TRUE(signatureIn(image).contains("s8ch"_ba)) << "the ticket lies in the signature";
    EXPECT_EQ(verify(image).status, 0);
    EXPECT_EQ(staple(image, u"validate"_s).status, 0);
    EXPECT_EQ(staple(image).status, 0);
    expectReadable(image);
}

TEST_F(ImageSigning, anUnsignedImageCanBeStapled)
{
    const QString image = this->image();
    ASSERT_TRUE(isApproved(image));
    EXPECT_EQ(staple(image).status, 0);
    EXPECT_EQ(staple(image, u"validate"_s).status, 0);
    EXPECT_EQ(verify(image).status, 0);
    expectReadable(image);
}

TEST_F(ImageSigning, theBundleInAnApprovedImageCanBeStapledToo)
{
    ASSERT_TRUE(isApproved(image()));
    EXPECT_EQ(staple(app()).status, 0);
}

TEST_F(ImageSigning, anImageThatNobodyApprovedIsNotStapled)
{
    const QString image = this->image();
    const QByteArray before = readFile(image);
    EXPECT_EQ(staple(image).status, 65);
    EXPECT_EQ(readFile(image), before);
}

TEST_F(ImageSigning, anImageSignedAnewAfterItsApprovalIsNotStapled)
{
    const QString image = this->image();
    ASSERT_EQ(signForRelease(image).status, 0);
    ASSERT_TRUE(isApproved(image));
    ASSERT_EQ(staple(image).status, 0);
    ASSERT_EQ(signByAnother(image).status, 0);
    EXPECT_EQ(staple(image, u"validate"_s).status, 65);
    EXPECT_EQ(staple(image).status, 65);
}

TEST_F(ImageSigning, anImageSignedAfterItsApprovalIsNotStapled)
{
    const QString image = this->image();
    ASSERT_TRUE(isApproved(image));
    ASSERT_EQ(signForRelease(image).status, 0);
    EXPECT_EQ(staple(image).status, 65);
}

TEST_F(ImageSigning, anUnsignedImageHasNoUsableSignatureEvenIfItIsApproved)
{
    const QString image = this->image();
    ASSERT_TRUE(isApproved(image));
    EXPECT_EQ(assess(image).status, 3);
    EXPECT_EQ(assess(image).error, image + u": rejected\nsource=no usable signature\n"_s);
}

TEST_F(ImageSigning, aSignedImageIsAcceptedForOpeningOnceItIsApproved)
{
    const QString image = this->image();
    ASSERT_EQ(signForRelease(image).status, 0);
    EXPECT_EQ(assess(image).error,
              image + u": rejected\nsource=Unnotarized Developer ID of this machine\norigin="_s + identity
                  + u'\n');
    ASSERT_TRUE(isApproved(image));
    const QString accepted =
        image + u": accepted\nsource=Notarized Developer ID of this machine\norigin="_s + identity + u'\n';
    EXPECT_EQ(assess(image).error, accepted);
    ASSERT_EQ(staple(image).status, 0);
    ASSERT_TRUE(QFile::rename(statePath(u"notary"_s), statePath(u"forgotten"_s)));
    EXPECT_EQ(assess(image).status, 0);
    EXPECT_EQ(assess(image).error, accepted);
    EXPECT_EQ(assess(image, u"execute"_s).status, 3);
    EXPECT_EQ(assess(image, u"install"_s).status, 3);
}

TEST_F(ImageSigning, anImageChangedAfterItsApprovalIsRejected)
{
    const QString image = this->image();
    ASSERT_EQ(signForRelease(image).status, 0);
    ASSERT_TRUE(isApproved(image));
    QByteArray bytes = readFile(image);
    bytes[100] = char(bytes[100] + 1);
    writeFile(image, bytes);
    EXPECT_TRUE(assess(image).error.startsWith(
        image + u": rejected\nsource=invalid signature (code or signature have been modified)\n"_s));
}
