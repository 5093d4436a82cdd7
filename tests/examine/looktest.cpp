// A look at an item: it changes nothing, answers by its exit status, and tells what is in packed items too.

#include "examine/examinerun.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using sealwright::examine::Product;
using sealwright::examine::productIn;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;

namespace {

/// Everything of a tree that a look could change.
QByteArray stateOf(const QString &folder)
{
    QStringList lines;
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QByteArray path = QFile::encodeName(entries.next());
        struct stat status = {};
        EXPECT_EQ(lstat(path.constData(), &status), 0);
        char names[1024];
        const auto attributes = llistxattr(path.constData(), names, sizeof names);
        QFile file(QFile::decodeName(path));
        const bool isFile = S_ISREG(status.st_mode) && file.open(QIODevice::ReadOnly);
        lines.append(u"%1 %2 %3 %4.%5 %6.%7 %8 %9"_s.arg(QFile::decodeName(path))
                         .arg(status.st_mode)
                         .arg(status.st_ino)
                         .arg(status.st_mtim.tv_sec)
                         .arg(status.st_mtim.tv_nsec)
                         .arg(status.st_ctim.tv_sec)
                         .arg(status.st_ctim.tv_nsec)
                         .arg(attributes)
                         .arg(isFile ? qHash(file.readAll()) : 0));
    }
    lines.sort();
    return lines.join(u'\n').toUtf8();
}

QStringList filesAndFoldersIn(const QString &folder)
{
    QStringList paths;
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext())
        paths.append(entries.next());
    return paths;
}

constexpr time_t longAgo = 1'000'000'000; // before the files were changed, so that each reading would count

void setAccessTimes(const QStringList &paths)
{
    const timespec times[] = {{longAgo, 0}, {0, UTIME_OMIT}};
    for (const QString &path : paths)
        EXPECT_EQ(utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0), 0);
}

QStringList accessed(const QStringList &paths)
{
    QStringList found;
    struct stat status = {};
    for (const QString &path : paths) {
        EXPECT_EQ(stat(QFile::encodeName(path).constData(), &status), 0);
        if (status.st_atim.tv_sec != longAgo)
            found.append(path);
    }
    return found;
}

QJsonObject entryAt(const QJsonObject &examination, const QString &path)
{
    for (const auto &entry : examination.value("code"_L1).toArray()) {
        if (entry.toObject().value("path"_L1).toString() == path)
            return entry.toObject();
    }
    return {};
}

QStringList rulesOf(const ItemMaker &item)
{
    QStringList rules;
    const auto examination = examine::examineItem(item.item(), item.choices);
    EXPECT_TRUE(examination);
    for (const examine::Finding &finding : examination->findings)
        rules.append(finding.rule + u' ' + finding.path);
    return rules;
}

void runTool(const QString &name, const QStringList &arguments)
{
    QProcess process;
    process.start(QString::fromUtf8(TOOLCHAIN_ROOT) + u"/usr/bin/"_s + name, arguments);
    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
}

} // namespace

TEST(ALook, changesNothing)
{
    ItemMaker item;
    item.bundle(u"Contents/PlugIns/Bar.plugin"_s, codefiles::loadable(u"arm64"_s));
    item.file(u"Contents/Scriptbench.plist"_s, "<plist/>"); // a run deletes it
    item.archive(u"Contents/Resources/a.zip"_s, {{u"tool"_s, codefiles::executable(u"x86_64"_s)}});
    item.link(u"Contents/Resources/link"_s, u"nowhere"_s);
    item.file(u"Contents/Resources/Scripts/main.scpt"_s, "script");
    setxattr(QFile::encodeName(item.path(u"Contents/Info.plist"_s)).constData(), "user.test", "a", 1, 0);
    const QByteArray before = stateOf(item.folder());
    EXPECT_EQ(run({item.item()}).status, 1);
    EXPECT_EQ(stateOf(item.folder()), before);
    EXPECT_TRUE(QFile::exists(item.path(u"Contents/Scriptbench.plist"_s)));
}

TEST(ALook, leavesTheTimesOfLastAccessAlone)
{
    const ItemMaker item;
    item.bundle(u"Contents/PlugIns/Bar.plugin"_s, codefiles::loadable(u"arm64"_s));
    item.archive(u"Contents/Resources/texts.zip"_s, {{u"a.txt"_s, "text"}});
    item.file(u"Contents/Resources/a.txt"_s, "text");
    const QStringList paths = filesAndFoldersIn(item.item());
    setAccessTimes(paths);
    EXPECT_EQ(run({item.item()}).status, 0);
    EXPECT_EQ(accessed(paths).join(u'\n').toStdString(), "");
}

TEST(ALook, answersByItsExitStatus)
{
    ItemMaker item;
    EXPECT_EQ(run({item.item()}).status, 0);
    item.code(u"Contents/Resources/.hidden"_s, codefiles::executable(u"arm64"_s));
    EXPECT_EQ(run({item.item()}).status, 1);
    const Ended missing = run({item.path(u"missing.app"_s)});
    EXPECT_EQ(missing.status, 4);
    EXPECT_TRUE(missing.error.contains("does not exist"));
    EXPECT_TRUE(missing.output.isEmpty());
    EXPECT_EQ(run({item.path(u"Contents/Info.plist"_s)}).status, 4);
    EXPECT_EQ(run({}).status, 2);
    EXPECT_EQ(run({u"--choices"_s, u"{"_s, item.item()}).status, 2);
}

TEST(ALook, tellsOfABundleByItsMainExecutable)
{
    ItemMaker item(u"arm64"_s);
    const QJsonObject found = QJsonDocument::fromJson(run({item.item()}).output).object();
    EXPECT_EQ(found.value("item"_L1).toString(), item.item());
    EXPECT_EQ(found.value("kind"_L1).toString(), u"app"_s);
    EXPECT_EQ(found.value("code"_L1).toArray().size(), 1);
    const QJsonObject app = entryAt(found, u"."_s);
    EXPECT_EQ(app.value("order"_L1).toInt(), 1);
    EXPECT_TRUE(app.value("reason"_L1).isNull());
    EXPECT_EQ(app.value("architectures"_L1).toArray().first().toString(), u"arm64"_s);
    EXPECT_EQ(app.value("platform"_L1).toString(), u"macos"_s);
    EXPECT_EQ(app.value("minimumSystem"_L1).toString(), u"11.0"_s);
    EXPECT_EQ(app.value("signature"_L1).toObject().value("state"_L1).toString(), u"linker"_s);
    EXPECT_TRUE(app.value("signature"_L1).toObject().value("timestamp"_L1).isNull());
}

TEST(ALook, countsTheOrderWithoutGapsAndTheItemLast)
{
    ItemMaker item;
    item.bundle(u"Contents/Frameworks/Bar.framework"_s, codefiles::library(u"arm64"_s));
    item.file(u"Contents/Frameworks/libx.dylib"_s, codefiles::library(u"arm64"_s));
    item.link(u"Contents/Frameworks/liby.dylib"_s, u"libx.dylib"_s);
    item.file(u"Contents/Resources/flow.wflow"_s, "<plist/>");
    const QJsonObject found = QJsonDocument::fromJson(run({item.item()}).output).object();
    QList<int> orders;
    for (const auto &entry : found.value("code"_L1).toArray()) {
        if (entry.toObject().value("order"_L1).isDouble())
            orders.append(entry.toObject().value("order"_L1).toInt());
    }
    std::sort(orders.begin(), orders.end());
    EXPECT_EQ(orders, (QList<int>{1, 2, 3, 4, 5}));
    EXPECT_EQ(entryAt(found, u"."_s).value("order"_L1).toInt(), 5);
    EXPECT_EQ(entryAt(found, u"Contents/Frameworks/Bar.framework/Versions/A"_s).value("kind"_L1).toString(),
              u"framework"_s);
}

TEST(ALook, takesNoPipeForAFile)
{
    ItemMaker item;
    ASSERT_EQ(mkfifo(QFile::encodeName(item.path(u"Contents/Resources/pipe"_s)).constData(), 0600), 0);
    const auto examination = examine::examineItem(item.item(), item.choices);
    ASSERT_TRUE(examination);
    ASSERT_EQ(examination->findings.size(), 1);
    EXPECT_EQ(examination->findings.first().rule, u"unreadable"_s);
}

TEST(ALook, waitsForNoPipeInTheDescriptionsPlace)
{
    ItemMaker item;
    item.remove(u"Contents/Info.plist"_s);
    ASSERT_EQ(mkfifo(QFile::encodeName(item.path(u"Contents/Info.plist"_s)).constData(), 0600), 0);
    EXPECT_THAT(rulesOf(item), Contains(u"unreadable Contents/Info.plist"_s));
}

TEST(ALook, goesToWhatALinkInTheItemsPlaceLeadsTo)
{
    ItemMaker item;
    ASSERT_TRUE(QFile::link(item.item(), item.folder() + u"/Link.app"_s));
    EXPECT_EQ(run({item.folder() + u"/Link.app"_s}).status, 0);
}

TEST(ALook, refusesAFileThatIsNoImageAndNoPackage)
{
    for (const QString &name : {u"/a.dmg"_s, u"/a.pkg"_s}) {
        const ItemMaker item;
        QFile file(item.folder() + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("text");
        file.close();
        const Ended ended = run({file.fileName()});
        EXPECT_EQ(ended.status, 1);
        EXPECT_TRUE(ended.output.contains("damaged-code"));
        EXPECT_FALSE(ended.output.contains("\"bundle\""));
    }
}

TEST(ALook, tellsOfASignatureThatARunMayNotReplace)
{
    ItemMaker item;
    runTool(u"codesign"_s, {u"-f"_s, u"-s"_s, u"-"_s, item.item()});
    EXPECT_THAT(rulesOf(item), IsEmpty());
    item.choices.replacesSignatures = false;
    EXPECT_THAT(rulesOf(item), Contains(u"unsigned-code ."_s));
}

TEST(ALook, saysWhatIsSignedWithItsAppWhereCodesignGoesDeep)
{
    ItemMaker item;
    item.file(u"Contents/Helpers/tool"_s, codefiles::executable(u"arm64"_s));
    item.choices.signsDeep = true;
    const auto examination = examine::examineItem(item.item(), item.choices);
    ASSERT_TRUE(examination);
    ASSERT_EQ(examination->code.size(), 2);
    EXPECT_FALSE(examination->code.last().order);
    EXPECT_EQ(examination->code.last().reason, u"is signed as a part of the bundle around it"_s);
}

TEST(ALook, warnsOfALibraryThatAnotherTeamHasSigned)
{
    const QTemporaryDir state;
    qputenv("SEALWRIGHT_TOOLCHAIN_STATE", state.path().toUtf8());
    runTool(u"sealwright-keychain"_s, {u"make-identity"_s, u"--name"_s, u"Other Corp (B1B2C3D4E5)"_s});
    ItemMaker item;
    const QString name = u"Contents/Frameworks/libx.dylib"_s;
    item.file(name, codefiles::library(u"arm64"_s));
    runTool(u"codesign"_s,
            {u"-f"_s, u"-s"_s, u"Developer ID Application: Other Corp (B1B2C3D4E5)"_s, u"--timestamp=none"_s,
             item.path(name)});
    item.choices.skipPaths = {name};
    item.choices.team = u"A1B2C3D4E5"_s;
    EXPECT_THAT(rulesOf(item), Contains(u"library-validation "_s + name));
    item.choices.entitlements.insert(u"com.apple.security.cs.disable-library-validation"_s, true);
    EXPECT_THAT(rulesOf(item), Not(Contains(u"library-validation "_s + name)));
    item.choices.entitlements.clear();
    item.choices.team = u"B1B2C3D4E5"_s;
    EXPECT_THAT(rulesOf(item), Not(Contains(u"library-validation "_s + name)));
    qunsetenv("SEALWRIGHT_TOOLCHAIN_STATE");
}

TEST(ALook, tellsThatASignatureThatStaysDoesNotHoldWhoeverMadeIt)
{
    ItemMaker item;
    const QString name = u"Contents/Frameworks/libx.dylib"_s;
    item.file(name, codefiles::library(u"universal"_s));
    runTool(u"codesign"_s, {u"-f"_s, u"-s"_s, u"-"_s, item.path(name)});
    item.choices.skipPaths = {name};
    const QString finding = u"signature-invalid "_s + name;
    EXPECT_THAT(rulesOf(item), Not(Contains(finding)));
    QFile file(item.path(name));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    QByteArray bytes = file.readAll();
    const qsizetype place = bytes.indexOf("__text"); // of the first slice's load commands
    ASSERT_GT(place, 0);
    bytes[place] = '-';
    file.seek(0);
    file.write(bytes);
    file.close();
    EXPECT_THAT(rulesOf(item), Contains(finding));
    EXPECT_THAT(rulesOf(item), Contains(u"not-developer-id "_s + name));
}

TEST(Choices, comeBackAsTheyWere)
{
    examine::Choices choices;
    choices.entitlements = {{u"since"_s, QDateTime(QDate(2026, 1, 1), QTime(), Qt::UTC)}, {u"on"_s, true}};
    choices.skipPaths = {u"a/b"_s};
    choices.replacesSignatures = false;
    const auto read = examine::choicesFromJson(toJson(choices));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->entitlements, choices.entitlements);
    EXPECT_EQ(read->skipPaths, choices.skipPaths);
    EXPECT_FALSE(read->replacesSignatures);
    EXPECT_TRUE(examine::choicesFromJson("{}")->replacesSignatures);
    EXPECT_FALSE(examine::choicesFromJson("[]"));
}

TEST(AFolder, isSignedByWhatItHolds)
{
    ItemMaker item;
    item.rename(u"Tools"_s);
    item.code(u"Contents/tool"_s, codefiles::executable(u"arm64"_s));
    const auto examination = examine::examineItem(item.item(), item.choices);
    ASSERT_TRUE(examination);
    EXPECT_EQ(examination->kind, examine::ItemKind::folder);
    EXPECT_FALSE(examination->isRefused());
}

TEST(ALook, tellsTheSizeOfTheItemWhereItIsAskedTo)
{
    ItemMaker item;
    item.file(u"Contents/Resources/large"_s, QByteArray(100'000, 'x'));
    const auto sizeFor = [&](const QString &choices) {
        const Ended ended = run({u"--choices"_s, choices, item.item()});
        return QJsonDocument::fromJson(ended.output).object().value("size"_L1);
    };
    EXPECT_GT(sizeFor(u"{\"countsSize\": true}"_s).toInteger(), 100'000);
    EXPECT_TRUE(sizeFor(u"{}"_s).isUndefined());
}

TEST(ALook, tellsWhatAPackageCallsItselfWhereItIsAskedTo)
{
    ItemMaker item;
    item.become(
        u"Foo.pkg"_s,
        item.archiveBytes(u"xar"_s,
                          {{u"PackageInfo"_s, "<pkg-info identifier=\"com.example.foo\" version=\"1.2\"/>"},
                           {u"Payload"_s, item.archiveBytes(u"cpio.gz"_s, {{u"a.txt"_s, "a"}})}}));
    const auto productFor = [&](const QString &choices) {
        const Ended ended = run({u"--choices"_s, choices, item.item()});
        return QJsonDocument::fromJson(ended.output).object().value("product"_L1);
    };
    EXPECT_EQ(productFor(u"{\"countsSize\": true}"_s).toObject().value("identifier"_L1),
              u"com.example.foo"_s);
    EXPECT_EQ(productFor(u"{\"countsSize\": true}"_s).toObject().value("version"_L1), u"1.2"_s);
    EXPECT_TRUE(productFor(u"{}"_s).isUndefined());
}

TEST(ALook, tellsTheNameOfAnImagesVolumeWhereItIsAskedTo)
{
    ItemMaker image;
    image.become(u"Foo.dmg"_s, image.imageBytes({{u"a.txt"_s, "a"}}));
    const Ended ended = run({u"--choices"_s, u"{\"countsSize\": true}"_s, image.item()});
    const QJsonObject look = QJsonDocument::fromJson(ended.output).object();
    EXPECT_EQ(look.value("product"_L1).toObject().value("volume"_L1), u"Foo"_s);
}

TEST(ProductInAPackage, isThatOfTheDistributionElseOfItsOneComponent)
{
    const Product foo{u"com.example.foo"_s, u"3.4"_s, {}};
    EXPECT_EQ(productIn("<installer-gui-script><product id=\"com.example.foo\" version=\"3.4\"/>"
                        "<pkg-ref id=\"a\"/><pkg-ref id=\"b\" version=\"1\"/></installer-gui-script>"),
              foo);
    EXPECT_EQ(productIn("<a><pkg-ref id=\"com.example.foo\"/><pkg-ref id=\"com.example.foo\" version=\"3.4\">"
                        "#foo.pkg</pkg-ref></a>"),
              foo);
    EXPECT_EQ(productIn("<pkg-info identifier=\"com.example.foo\" version=\"3.4\"/>"), foo);
}

TEST(ProductInAPackage, isNoneWhereNothingTellsOneLine)
{
    EXPECT_EQ(productIn({}), Product());
    EXPECT_EQ(productIn("<pkg-info identifier=\"com.example.foo\""), Product()) << "which does not end";
    EXPECT_EQ(productIn("<a><pkg-ref id=\"a\"/><pkg-ref id=\"b\"/></a>"), Product()) << "of several";
    EXPECT_EQ(productIn("<pkg-info identifier=\"a&#10;b\"/>"), Product());
    EXPECT_EQ(productIn("<pkg-info identifier=\"" + QByteArray(300, 'x') + "\"/>"), Product());
}
