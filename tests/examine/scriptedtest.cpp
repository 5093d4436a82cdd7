// A look, a comparison and the service's issues, as scripts ask for them.

#include "examine/codefiles.h"
#include "examine/itemmaker.h"
#include "examine/session.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// The lines that the commands print.
QStringList linesOf(const ItemMaker &item, const QByteArray &commands)
{
    const session::Ended ended = session::run(item.folder(), commands);
    EXPECT_EQ(ended.status, 0) << ended.error.toStdString();
    return QString::fromUtf8(ended.output).split(u'\n', Qt::SkipEmptyParts);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

QJsonObject jsonIn(const QString &path)
{
    return QJsonDocument::fromJson(readFile(path)).object();
}

/// An app with something that a run leaves unsigned.
void hideCode(const ItemMaker &item)
{
    item.code(u"Contents/Resources/.tool"_s, codefiles::executable(u"x86_64"_s));
}

} // namespace

TEST(AScriptThatExamines, isToldByTheStatusWhatWouldBecomeOfTheItem)
{
    ItemMaker item;
    const QString good = item.folder() + u"/Good.app"_s;
    ASSERT_EQ(QProcess::execute(u"cp"_s, {u"-a"_s, item.item(), good}), 0);
    hideCode(item);
    EXPECT_EQ(linesOf(item, R"SCRIPT(
status ctl examine "$W/Good.app"; tail -n 1 "$W/output"
status ctl examine "$W/Foo.app"; tail -n 1 "$W/output"
status ctl examine "$W/Missing.app"; grep -c error "$W/error"
status ctl examine "$W/Foo.app/Contents/Info.plist"; grep -c neither "$W/error"
status ctl examine
status ctl examine --json --sarif "$W/Foo.app"
status ctl examine --document nobody "$W/Foo.app"
)SCRIPT"),
              (QStringList{u"0"_s, u"Nothing was found that would be refused."_s, u"1"_s,
                           u"The item would be refused."_s, u"4"_s, u"1"_s, u"4"_s, u"1"_s, u"2"_s, u"2"_s,
                           u"4"_s}));
}

TEST(AScriptThatExamines, leavesNoLineInTheLogOfTheDocument)
{
    const ItemMaker item;
    EXPECT_EQ(linesOf(item, R"SCRIPT(
status ctl examine "$W/Foo.app" --document "$document"
ctl log "$document" | grep -c . || true
)SCRIPT"),
              (QStringList{u"0"_s, u"0"_s}));
}

TEST(AScriptThatExamines, getsFormsThatBuildServersRead)
{
    const ItemMaker item;
    hideCode(item);
    linesOf(item, R"SCRIPT(
ctl examine "$W/Foo.app" --junit > "$W/junit" || [ $? = 1 ]
ctl examine "$W/Foo.app" --sarif > "$W/sarif" || [ $? = 1 ]
ctl examine "$W/Foo.app" --json > "$W/json" || [ $? = 1 ]
)SCRIPT");
    const QByteArray junit = readFile(item.folder() + u"/junit"_s);
    QXmlStreamReader xml(junit);
    while (!xml.atEnd())
        xml.readNext();
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    EXPECT_TRUE(junit.contains("failures=\"1\""));
    EXPECT_TRUE(junit.contains("classname=\"unsigned-code\" name=\"Contents/Resources/.tool (x86_64)\""));
    const QJsonObject run = jsonIn(item.folder() + u"/sarif"_s).value("runs"_L1).toArray().first().toObject();
    const QJsonObject result = run.value("results"_L1).toArray().first().toObject();
    EXPECT_EQ(result.value("ruleId"_L1).toString(), u"unsigned-code"_s);
    EXPECT_EQ(result.value("level"_L1).toString(), u"error"_s);
    EXPECT_TRUE(jsonIn(item.folder() + u"/json"_s).value("refused"_L1).toBool());
}

TEST(AScriptThatCompares, isToldByTheStatusWhetherThereAreDifferences)
{
    const ItemMaker item;
    EXPECT_EQ(linesOf(item, R"SCRIPT(
mkdir "$W/Foo - Notarized"
cp -a "$W/Foo.app" "$W/Foo - Notarized/Foo.app"
status ctl compare "$W/Foo.app" "$W/Foo - Notarized"
rm -r "$W/Foo.app/Contents/Resources"
status ctl compare "$W/Foo - Notarized" "$W/Foo.app" --json
grep -o '"what": "[a-z]*"' "$W/output"
status ctl compare "$W/Foo.app" "$W/Missing.app"
status ctl compare "$W/Foo.app"
)SCRIPT"),
              (QStringList{u"0"_s, u"1"_s, u"\"what\": \"size\""_s, u"4"_s, u"2"_s}));
}

TEST(AScriptThatAsksForIssues, getsNoneBeforeTheServiceHasSaidAnything)
{
    const ItemMaker item;
    EXPECT_EQ(linesOf(item, R"SCRIPT(
status ctl issues "$document"; wc -c < "$W/output"
ctl issues "$document" --json
status ctl issues "$document" --junit; grep -c 'failures="0"' "$W/output"
ctl get --document "$document" Issues
status ctl issues nobody
)SCRIPT"),
              (QStringList{u"0"_s, u"0"_s, u"[]"_s, u"0"_s, u"1"_s, u"[]"_s, u"1"_s}));
}
