// A look at an item: it changes nothing, answers by its exit status, and tells what is in packed items too.

#include "examine/codefiles.h"
#include "examine/comparison.h"
#include "examine/examiner.h"
#include "examine/itemmaker.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using testing::Contains;
using testing::IsEmpty;

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

struct Ended {
    int status;
    QByteArray output;
    QByteArray error;
};

Ended run(const QStringList &arguments)
{
    QProcess process;
    process.start(QString::fromUtf8(EXAMINE), arguments);
    EXPECT_TRUE(process.waitForFinished());
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput(), process.readAllStandardError()};
}

QJsonObject entryAt(const QJsonObject &examination, const QString &path)
{
    for (const auto &entry : examination.value("code"_L1).toArray()) {
        if (entry.toObject().value("path"_L1).toString() == path)
            return entry.toObject();
    }
    return {};
}

QStringList whats(const QList<examine::Difference> &differences)
{
    QStringList lines;
    for (const examine::Difference &difference : differences)
        lines.append(difference.what + u' ' + difference.path);
    return lines;
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

TEST(AComparison, findsNoDifferenceBetweenAnItemAndItself)
{
    const ItemMaker item;
    const auto differences = examine::compareItems(item.item(), item.item());
    ASSERT_TRUE(differences);
    EXPECT_THAT(*differences, IsEmpty());
    EXPECT_EQ(run({u"--compare"_s, item.item(), item.item()}).status, 0);
}

TEST(AComparison, tellsWhatHasComeGoneAndChanged)
{
    ItemMaker before(u"universal"_s);
    before.code(u"Contents/MacOS/old"_s, codefiles::executable(u"arm64"_s));
    ItemMaker after(u"arm64"_s);
    after.code(u"Contents/MacOS/new"_s, codefiles::executable(u"arm64"_s));
    after.info(u"Contents"_s, u"Foo"_s, u"com.example.other"_s);
    const auto differences = examine::compareItems(before.item(), after.item());
    ASSERT_TRUE(differences);
    const QStringList found = whats(*differences);
    EXPECT_THAT(found, Contains(u"removed Contents/MacOS/old"_s));
    EXPECT_THAT(found, Contains(u"added Contents/MacOS/new"_s));
    EXPECT_THAT(found, Contains(u"architectures ."_s));
    EXPECT_THAT(found, Contains(u"identifier ."_s));
    EXPECT_THAT(found, Contains(u"size ."_s));
    EXPECT_EQ(run({u"--compare"_s, before.item(), after.item()}).status, 1);
    EXPECT_EQ(run({u"--compare"_s, before.item(), before.path(u"missing.app"_s)}).status, 4);
}
