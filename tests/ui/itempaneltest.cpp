#include "ui/itempanel.h"
#include "ui/itemkinds.h"
#include "ui/sheets.h"

#include "document/mainwincontroller.h"
#include "platform/itempath.h"
#include "support/items.h"

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QSortFilterProxyModel>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// A panel that looks into a folder of files, bundles and ordinary folders.
class ItemPanelTest : public testing::Test {
protected:
    ItemPanelTest()
    {
        items::makeBundle(path(u"Foo.app"_s));
        items::makeBundle(path(u"Upper.APP"_s));
        items::makeBundle(path(u"Some.framework"_s));
        items::makeFolder(path(u"Folder"_s));
        items::makeFile(path(u"Installer.pkg"_s), "pkg");
        items::makeFile(path(u"Notes.txt"_s), "text");
        items::makeFolder(path(u"Folder.txt"_s));
        items::makeFile(path(u"RequestUUID.txt"_s), "text");
    }

    QString path(const QString &name) const { return m_folder.filePath(name); }

    ItemPanel &open(const platform::OpenPanel &description)
    {
        m_panel = std::make_unique<ItemPanel>(description, m_folder.path());
        m_panel->open();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_panel.get()));
        return *m_panel;
    }

    /// Types the name and presses Return.
    void enter(const QString &name)
    {
        auto *const field = m_panel->findChild<QLineEdit *>(u"fileNameEdit"_s);
        ASSERT_TRUE(field);
        field->clear();
        QTest::keyClicks(field, name);
        QTest::keyClick(field, Qt::Key_Return);
    }

    QListView &list() { return *m_panel->findChild<QListView *>(u"listView"_s); }

    /// The row of the name; not valid while the list does not show it.
    QModelIndex row(const QString &name)
    {
        const auto found =
            list().model()->match(list().model()->index(0, 0, list().rootIndex()), Qt::DisplayRole, name, 1,
                                  Qt::MatchExactly | Qt::MatchCaseSensitive);
        return found.value(0);
    }
    bool awaitRow(const QString &name)
    {
        return QTest::qWaitFor([&] { return row(name).isValid(); });
    }

    static platform::OpenPanel itemsToSubmit()
    {
        return {.message = u"Choose an item"_s,
                .allowedFileTypes = {u"app"_s, u"dmg"_s, u"pkg"_s, u"fmplugin"_s, u"plugin"_s},
                .canChooseFiles = true,
                .canChooseDirectories = false,
                .shouldEnable = {}};
    }

private:
    QTemporaryDir m_folder;
    std::unique_ptr<ItemPanel> m_panel;
};

} // namespace

TEST_F(ItemPanelTest, aBundleIsChosenByNameLikeAFile)
{
    auto &panel = open(itemsToSubmit());
    enter(u"Foo.app"_s);
    EXPECT_EQ(panel.result(), QDialog::Accepted);
    EXPECT_EQ(panel.chosenItem(), itempath::toUrl(path(u"Foo.app"_s)));
}

TEST_F(ItemPanelTest, aBundleWithAnUpperCaseExtensionIsChosenToo)
{
    auto &panel = open(itemsToSubmit());
    enter(u"Upper.APP"_s);
    EXPECT_EQ(panel.chosenItem(), itempath::toUrl(path(u"Upper.APP"_s)));
}

TEST_F(ItemPanelTest, aFileIsChosen)
{
    auto &panel = open(itemsToSubmit());
    enter(u"Installer.pkg"_s);
    EXPECT_EQ(panel.chosenItem(), itempath::toUrl(path(u"Installer.pkg"_s)));
}

TEST_F(ItemPanelTest, aDoubleClickOnABundleChoosesIt)
{
    auto &panel = open(itemsToSubmit());
    ASSERT_TRUE(awaitRow(u"Foo.app"_s));
    Q_EMIT list().activated(row(u"Foo.app"_s));
    EXPECT_EQ(panel.result(), QDialog::Accepted);
    EXPECT_EQ(panel.chosenItem(), itempath::toUrl(path(u"Foo.app"_s)));
}

TEST_F(ItemPanelTest, aDoubleClickOnABundleChoosesItWhereFoldersMayBeChosenToo)
{
    ItemPanel &panel = open({.message = u"Choose an app or a directory"_s,
                             .allowedFileTypes = {u"app"_s},
                             .canChooseFiles = true,
                             .canChooseDirectories = true,
                             .shouldEnable = {}});
    ASSERT_TRUE(awaitRow(u"Foo.app"_s));
    list().setCurrentIndex(row(u"Foo.app"_s));
    Q_EMIT list().activated(row(u"Foo.app"_s));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !panel.isVisible(); }));
    EXPECT_EQ(panel.chosenItem(), itempath::toUrl(path(u"Foo.app"_s)));
}

TEST_F(ItemPanelTest, aFolderWithTheNameOfAFileIsNotChosen)
{
    items::makeFolder(path(u"Folder.pkg"_s));
    ItemPanel &panel = open(itemsToSubmit());
    enter(u"Folder.pkg"_s);
    EXPECT_TRUE(panel.chosenItem().isEmpty());
    EXPECT_TRUE(panel.isVisible());
}

TEST_F(ItemPanelTest, aBundleThatIsSelectedIsOpenedByTheButton)
{
    auto &panel = open(itemsToSubmit());
    ASSERT_TRUE(awaitRow(u"Foo.app"_s));
    list().setFocus();
    list().setCurrentIndex(row(u"Foo.app"_s));
    panel.accept();
    EXPECT_EQ(panel.chosenItem(), itempath::toUrl(path(u"Foo.app"_s)));
}

TEST_F(ItemPanelTest, anOrdinaryFolderIsEnteredAndNotChosen)
{
    auto &panel = open(itemsToSubmit());
    enter(u"Folder"_s);
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(panel.directory().path(), path(u"Folder"_s));
    EXPECT_TRUE(panel.chosenItem().isEmpty());
}

TEST_F(ItemPanelTest, aBundleOfAnotherKindIsNotChosen)
{
    auto &panel = open(itemsToSubmit());
    enter(u"Some.framework"_s);
    EXPECT_TRUE(panel.isVisible());
    EXPECT_TRUE(panel.chosenItem().isEmpty());
}

TEST_F(ItemPanelTest, aFileOfAnotherTypeIsNeitherShownNorTaken)
{
    auto &panel = open(itemsToSubmit());
    ASSERT_TRUE(awaitRow(u"Installer.pkg"_s));
    EXPECT_FALSE(row(u"Notes.txt"_s).isValid());
    enter(u"Notes.txt"_s);
    EXPECT_TRUE(panel.isVisible());
    EXPECT_TRUE(panel.chosenItem().isEmpty());
}

TEST_F(ItemPanelTest, whatTheOwnerRefusesIsShownGreyAndNotTaken)
{
    auto &panel = open({.message = u"Choose a record"_s,
                        .allowedFileTypes = {u"txt"_s},
                        .canChooseFiles = true,
                        .canChooseDirectories = false,
                        .shouldEnable = &MainWinController::shouldEnableURL});
    ASSERT_TRUE(awaitRow(u"RequestUUID.txt"_s) && awaitRow(u"Notes.txt"_s));
    for (const QString &name : {u"Notes.txt"_s, u"Folder.txt"_s})
        EXPECT_FALSE(row(name).flags() & Qt::ItemIsEnabled) << name.toStdString() << ": on show, but grey";
    for (const QString &name : {u"RequestUUID.txt"_s, u"Folder"_s, u"Foo.app"_s})
        EXPECT_TRUE(row(name).flags() & Qt::ItemIsEnabled) << name.toStdString();
    EXPECT_FALSE(row(u"Installer.pkg"_s).isValid());
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, list().visualRect(row(u"Notes.txt"_s)).center());
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {},
                       list().visualRect(row(u"Notes.txt"_s)).center());
    EXPECT_TRUE(panel.isVisible());
    enter(u"Notes.txt"_s);
    EXPECT_TRUE(panel.isVisible());
    EXPECT_TRUE(panel.chosenItem().isEmpty());
    enter(u"RequestUUID.txt"_s);
    EXPECT_EQ(panel.chosenItem(), itempath::toUrl(path(u"RequestUUID.txt"_s)));
}

TEST_F(ItemPanelTest, whereFoldersMayBeChosenAnyFolderIs)
{
    auto &panel = open({.message = u"Choose a folder"_s,
                        .allowedFileTypes = {},
                        .canChooseFiles = false,
                        .canChooseDirectories = true,
                        .shouldEnable = {}});
    enter(u"Folder"_s);
    EXPECT_EQ(panel.chosenItem(), itempath::toUrl(path(u"Folder"_s)));
}

TEST_F(ItemPanelTest, aTypedPathLeadsIntoAFolderThatMayBeChosenItself)
{
    auto &panel = open({.message = u"Choose an item to sign"_s,
                        .allowedFileTypes = {u"app"_s},
                        .canChooseFiles = true,
                        .canChooseDirectories = true,
                        .shouldEnable = {}});
    enter(path(u"Folder"_s));
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(panel.directory().path(), path(u"Folder"_s));
    enter(path(u"Foo.app"_s));
    EXPECT_EQ(panel.chosenItem(), itempath::toUrl(path(u"Foo.app"_s)));
}

TEST_F(ItemPanelTest, aMissingItemIsNotTaken)
{
    auto &panel = open(itemsToSubmit());
    enter(u"Missing.app"_s);
    EXPECT_TRUE(panel.isVisible());
    EXPECT_TRUE(panel.chosenItem().isEmpty());
}

TEST_F(ItemPanelTest, aCancelledPanelHasNoItem)
{
    auto &panel = open(itemsToSubmit());
    QTest::keyClick(&panel, Qt::Key_Escape);
    EXPECT_FALSE(panel.isVisible());
    EXPECT_TRUE(panel.chosenItem().isEmpty());
}

TEST_F(ItemPanelTest, bundlesAndPackagesAreShownAsWhatTheyAre)
{
    const ItemKinds kinds;
    EXPECT_EQ(kinds.type(QFileInfo(path(u"Foo.app"_s))), u"Application"_s);
    EXPECT_EQ(kinds.type(QFileInfo(path(u"Installer.pkg"_s))), u"Installer package"_s);
    EXPECT_NE(kinds.type(QFileInfo(path(u"Folder"_s))), u"Application"_s);
    items::makeFolder(path(u"Folder.dmg"_s));
    EXPECT_NE(kinds.type(QFileInfo(path(u"Folder.dmg"_s))), u"Disk image"_s)
        << "a name alone does not make one";
    const auto picture = [&](const QString &name) {
        return kinds.icon(QFileInfo(path(name))).pixmap(32).toImage();
    };
    EXPECT_NE(picture(u"Foo.app"_s), picture(u"Installer.pkg"_s));
    EXPECT_NE(picture(u"Foo.app"_s), picture(u"Folder"_s));
    EXPECT_EQ(picture(u"Folder.dmg"_s), picture(u"Folder"_s));
}

TEST_F(ItemPanelTest, asASheetSaysWhatItAsksFor)
{
    QWidget page;
    page.resize(1000, 700);
    page.show();
    Sheets sheets(page);
    sheets.begin(new ItemPanel(itemsToSubmit(), path({}), &page), [] {});
    const auto *const title = page.findChild<QLabel *>(u"sheetTitle"_s);
    ASSERT_TRUE(title);
    EXPECT_EQ(title->text(), u"Choose an item"_s);
    EXPECT_TRUE(title->isVisible());
    sheets.drop();
}
