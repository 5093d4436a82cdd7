#include "run/submittednames.h"
#include "ui/historyentries.h"
#include "ui/historymodel.h"
#include "ui/submitteditems.h"
#include "windowtest.h"

#include "platform/itempath.h"
#include "support/items.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

using namespace Qt::StringLiterals;

namespace {

const QString printedPage =
    u"Notarization History - page 0\n\n"
    "Date                      RequestUUID                          Status      Status Code "
    "Status Message   \n"
    "------------------------- ------------------------------------ ----------- ----------- "
    "---------------- \n"
    "2019-06-02 10:00:00 +0000 11111111-1111-1111-1111-111111111111 success     0           "
    "Package Approved \n"
    "2019-06-03 10:00:00 +0000 22222222-2222-2222-2222-222222222222 invalid     2           "
    "Package Invalid  \n"
    "2019-06-01 10:00:00 +0000 33333333-3333-3333-3333-333333333333 in progress             "
    "\n"_s;

class HistoryOfADocument : public WindowTest {
protected:
    HistoryOfADocument() { print(printedPage); }

    void print(const QString &text)
    {
        document().statusTextView.append({text, LogStyle::plain, {u"Menlo"_s, 12}});
    }
    QTableView &table() { return part<QTableView>(u"historyTable"_s); }
    QString cell(int row, int column) { return table().model()->index(row, column).data().toString(); }
    QStringList statuses()
    {
        QStringList all;
        for (int row = 0; row < table().model()->rowCount(); ++row)
            all.append(cell(row, HistoryModel::status));
        return all;
    }
    QPushButton &button(const QString &name) { return part<QPushButton>(name); }
};

} // namespace

TEST(HistoryEntries, areTheLinesUnderTheRule)
{
    const QList<HistoryEntry> entries = historyEntries(printedPage);
    ASSERT_EQ(entries.size(), 3);
    EXPECT_EQ(entries.at(1),
              (HistoryEntry{u"2019-06-03 10:00:00 +0000"_s, u"22222222-2222-2222-2222-222222222222"_s,
                            u"invalid"_s, u"2"_s, u"Package Invalid"_s}));
    EXPECT_EQ(entries.at(2).status, u"in progress"_s);
    EXPECT_EQ(entries.at(2).message, QString());
}

TEST(HistoryEntries, areNoneInOtherTexts)
{
    for (const QString &text :
         {QString(), u"No items found.\n"_s, u"---\n---- ----\nfoo bar\n"_s, u"Creating working copy...\n"_s})
        EXPECT_TRUE(historyEntries(text).isEmpty()) << text.toStdString();
}

TEST(HistoryEntries, areThoseOfTheWholeLinesInAMillionCharacters)
{
    const QString row = printedPage.section(u'\n', 4, 4) + u'\n';
    const qsizetype head = printedPage.indexOf(row);
    const qsizetype rows = (mostReadOfHistory - head) / row.size();
    const QString page = printedPage.left(head);
    EXPECT_EQ(historyEntries(page + row.repeated(rows)).size(), rows);
    EXPECT_EQ(historyEntries(page + row.repeated(rows + 5)).size(), rows);
    EXPECT_TRUE(historyEntries(QString(mostReadOfHistory + 1, u'-')).isEmpty());
}

TEST(HistoryOfAnAccount, ofThousandsOfRowsEachSubmissionStandsThereOnce)
{
    HistoryModel model;
    QList<HistoryEntry> entries;
    for (int number = 0; number < 5000; ++number)
        entries.append({u"2019"_s, QString::number(number), u"in progress"_s, {}, {}});
    model.take(entries);
    for (HistoryEntry &entry : entries)
        entry.status = u"success"_s;
    entries.append(entries.first());
    model.take(entries);
    EXPECT_EQ(model.rowCount(), 5000);
    EXPECT_EQ(model.entry(4999).status, u"success"_s);
}

TEST_F(HistoryOfADocument, standsInATableTheLatestFirst)
{
    EXPECT_EQ(statuses(), (QStringList{u"invalid"_s, u"success"_s, u"in progress"_s}));
    table().sortByColumn(HistoryModel::status, Qt::AscendingOrder);
    EXPECT_EQ(statuses(), (QStringList{u"in progress"_s, u"invalid"_s, u"success"_s}));
}

TEST_F(HistoryOfADocument, isSearchedInAllColumns)
{
    part<QLineEdit>(u"historySearch"_s).setText(u"approved"_s);
    EXPECT_EQ(statuses(), QStringList{u"success"_s});
    part<QLineEdit>(u"historySearch"_s).setText(u"3333"_s);
    EXPECT_EQ(statuses(), QStringList{u"in progress"_s});
}

TEST_F(HistoryOfADocument, knowsWhatALaterPageSaysOfASubmission)
{
    print(QString(printedPage).replace(u"in progress            "_s, u"success     0          "_s));
    EXPECT_EQ(statuses().count(u"success"_s), 2);
    EXPECT_EQ(statuses().size(), 3);
}

TEST_F(HistoryOfADocument, hasTheNamesOfTheItemsThatThisMachineHasSubmitted)
{
    EXPECT_EQ(cell(1, HistoryModel::item), QString());
    host.stateFolder = host.item(u"../state"_s);
    submittednames::remember(host.host(), u"11111111-1111-1111-1111-111111111111"_s, u"Foo Bar.app"_s);
    print(printedPage);
    EXPECT_EQ(cell(1, HistoryModel::item), u"Foo Bar.app"_s);
    EXPECT_EQ(cell(0, HistoryModel::item), QString());
    part<QLineEdit>(u"historySearch"_s).setText(u"foo bar"_s);
    EXPECT_EQ(statuses(), QStringList{u"success"_s});
}

TEST_F(HistoryOfADocument, isRememberedByEachUpload)
{
    host.stateFolder = host.item(u"../state"_s);
    items::makeBundle(host.item(u"Foo.app"_s));
    host.submit(host.item(u"Foo.app"_s));
    EXPECT_EQ(submittednames::known(host.host()).values(), QStringList{u"Foo.app"_s});
    host.firePolls();
    answer(u"OK"_s);
}

TEST(SubmittedNames, areThoseOfTheLatestThousand)
{
    TestHost testHost;
    testHost.stateFolder = testHost.item(u"../state"_s);
    const platform::Host host = testHost.host();
    submittednames::remember(host, {}, u"Foo.app"_s);
    EXPECT_TRUE(submittednames::known(host).isEmpty());
    for (int number = 0; number < 1002; ++number)
        submittednames::remember(host, u"id-%1"_s.arg(number), u"Foo %1.app"_s.arg(number));
    submittednames::remember(host, u"id-2"_s, u"a\nb"_s);
    const auto names = submittednames::known(host);
    EXPECT_EQ(names.size(), 1000);
    EXPECT_FALSE(names.contains(u"id-1"_s));
    EXPECT_EQ(names.value(u"id-2"_s), u"a b"_s);
    EXPECT_EQ(names.value(u"id-1001"_s), u"Foo 1001.app"_s);
}

TEST_F(HistoryOfADocument, nothingIsOfferedBeforeARowIsChosen)
{
    for (const QString &name :
         {u"historyReport"_s, u"historyLog"_s, u"historyCopyIdentifier"_s, u"historyStaple"_s})
        EXPECT_FALSE(button(name).isEnabled()) << name.toStdString();
    table().selectRow(0);
    EXPECT_TRUE(button(u"historyReport"_s).isEnabled());
    EXPECT_FALSE(button(u"historyStaple"_s).isEnabled()) << "the item is nowhere to be seen";
    button(u"historyCopyIdentifier"_s).click();
    EXPECT_EQ(QApplication::clipboard()->text(), u"22222222-2222-2222-2222-222222222222"_s);
}

TEST_F(HistoryOfADocument, aRowPrintsItsReportIntoTheLog)
{
    table().selectRow(1);
    button(u"historyReport"_s).click();
    host.settle();
    const QStringList last = host.tools.callsOf(u"altool--notarization-info"_s).last();
    EXPECT_TRUE(last.contains(u"11111111-1111-1111-1111-111111111111"_s)) << last.join(u' ').toStdString();
}

TEST_F(HistoryOfADocument, theItemThatIsAtHandCanBeStapled)
{
    const QString folder = host.item(u"Foo - Submitted"_s);
    items::makeBundle(folder + u"/Foo.app"_s);
    QFile record(folder + u"/RequestUUID.txt"_s);
    ASSERT_TRUE(record.open(QIODevice::WriteOnly));
    record.write("11111111-1111-1111-1111-111111111111\n");
    record.close();
    EXPECT_EQ(itemSubmittedAs(host.files, u"11111111-1111-1111-1111-111111111111"_s, {host.item({})}),
              folder + u"/Foo.app"_s);
    document().originalAppletURL.set(itempath::toUrl(host.item(u"Foo.app"_s)));
    table().selectRow(1);
    ASSERT_TRUE(button(u"historyStaple"_s).isEnabled());
    button(u"historyStaple"_s).click();
    host.settle();
    EXPECT_EQ(itempath::lastComponent(itempath::fromUrl(document().appletURL())), u"Foo.app"_s);
    EXPECT_EQ(document().lastAction(), stapleAction);
}
