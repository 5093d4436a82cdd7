// The two logs of a run, without a document.

#include "run/runlog.h"
#include "support/fakehost.h"
#include "support/items.h"
#include "support/testfiles.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class Log : public testing::Test {
protected:
    QByteArray file() const
    {
        QFile opened(path);
        return opened.open(QIODevice::ReadOnly) ? opened.readAll() : "none";
    }

    QTemporaryDir folder;
    const QString path = folder.filePath(u"log.txt"_s);
    TestFiles files{folder.filePath(u"trash"_s)};
    ManualClock clock;
    QStringList shown;
    RunLog log{clock, files, [this](const QString &line, LogStyle style) {
                   shown.append(QString::number(static_cast<int>(style)) + u' ' + line);
               }};
};

QString styled(LogStyle style, const QString &message)
{
    return QString::number(static_cast<int>(style)) + u" 14:03:22.123: "_s + message + u'\n';
}

} // namespace

TEST_F(Log, takesEachLineToTheWindowInItsStyle)
{
    log.logString(u"one"_s);
    log.logError(u"two"_s);
    log.logBoldString(u"three"_s);
    EXPECT_EQ(shown,
              (QStringList{styled(LogStyle::plain, u"one"_s), styled(LogStyle::error, u"two"_s),
                           styled(LogStyle::bold, u"three"_s)}));
    EXPECT_FALSE(log.isOpen());
    EXPECT_EQ(file(), "none");
}

TEST_F(Log, hasInItsFileWhatTheWindowHasAndWhatItHasNot)
{
    log.open(path, u"head"_s);
    ASSERT_TRUE(log.isOpen());
    log.logString(u"one"_s);
    log.logToFile(u"two"_s);
    EXPECT_EQ(log.noteInFile(u"three"_s), u"14:03:22.123: three\n"_s);
    EXPECT_EQ(file(), "14:03:22.123: head\n14:03:22.123: one\n14:03:22.123: two\n14:03:22.123: three\n");
    EXPECT_EQ(shown, QStringList{styled(LogStyle::plain, u"one"_s)});
}

TEST_F(Log, addsToTheFileThatIsThere)
{
    items::makeFile(path, "earlier\n");
    log.open(path, u"head"_s);
    EXPECT_EQ(file(), "earlier\n14:03:22.123: head\n");
}

TEST_F(Log, goesOnInTheWindowAloneWhereThereCanBeNoFile)
{
    files.failure = [](const QString &operation, const QString &) {
        return operation == "createFile"_L1 ? u"read-only"_s : QString();
    };
    log.open(path, u"head"_s);
    EXPECT_FALSE(log.isOpen());
    log.logString(u"one"_s);
    EXPECT_EQ(shown.size(), 1);
}

TEST_F(Log, writesNothingBehindItsEnd)
{
    log.open(path, u"head"_s);
    log.close();
    log.logString(u"late"_s);
    EXPECT_FALSE(log.isOpen());
    EXPECT_EQ(file(), "14:03:22.123: head\n");
    EXPECT_EQ(shown.size(), 1);
}
