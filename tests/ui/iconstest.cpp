#include "ui/icons.h"

#include "support/items.h"
#include "windowtest.h"

#include <QAbstractButton>
#include <QAction>
#include <QImage>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using icons::Command;

namespace {

/// A theme of the desktop that has one picture, a red square.
class IconTheme : public testing::Test {
protected:
    IconTheme()
    {
        items::makeFile(folder.filePath(u"small/index.theme"_s),
                        "[Icon Theme]\nName=small\nDirectories=16x16\n\n[16x16]\nSize=16\nType=Fixed\n");
        items::makeFolder(folder.filePath(u"small/16x16"_s));
        QImage square(16, 16, QImage::Format_ARGB32);
        square.fill(Qt::red);
        EXPECT_TRUE(square.save(folder.filePath(u"small/16x16/edit-copy.png"_s)));
        QIcon::setThemeSearchPaths({folder.path()});
        QIcon::setThemeName(u"small"_s);
    }
    ~IconTheme() override
    {
        QIcon::setThemeSearchPaths(paths);
        QIcon::setThemeName(name);
    }
    static QImage imageOf(Command command)
    {
        return icons::of(command).pixmap(16, 16).toImage().convertToFormat(QImage::Format_ARGB32);
    }

    const QStringList paths = QIcon::themeSearchPaths();
    const QString name = QIcon::themeName();
    QTemporaryDir folder;
};

int inkOf(const QImage &image)
{
    int pixels = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            pixels += image.pixelColor(x, y).alpha() > 0 ? 1 : 0;
    }
    return pixels;
}

} // namespace

TEST_F(IconTheme, hasTheSayWhereItHasThePicture)
{
    EXPECT_EQ(imageOf(Command::copy).pixelColor(0, 0), QColor(Qt::red));
}

TEST_F(IconTheme, isStoodInForByOursWhereItLacksOne)
{
    const QImage ours = imageOf(Command::paste);
    EXPECT_GT(inkOf(ours), 16);
    EXPECT_NE(ours.pixelColor(8, 3), QColor(Qt::red));
}

TEST(OwnIcons, areEachThereAndDifferentFromAllOthers)
{
    QList<QImage> seen;
    for (int number = 0; number <= int(Command::website); ++number) {
        const QImage image = icons::of(Command(number)).pixmap(32, 32).toImage();
        EXPECT_GT(inkOf(image), 32) << number;
        EXPECT_FALSE(seen.contains(image)) << number;
        seen.append(image);
    }
}

TEST(OwnIcons, haveTheColourOfTheTextAroundThem)
{
    const QPalette usual = QApplication::palette();
    QPalette dark = usual;
    dark.setColor(QPalette::WindowText, Qt::yellow);
    const QIcon icon = icons::of(Command::newWindow);
    QApplication::setPalette(dark);
    const QImage image = icon.pixmap(32, 32).toImage();
    QApplication::setPalette(usual);
    bool isYellow = false;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            isYellow |= image.pixelColor(x, y) == QColor(Qt::yellow);
    }
    EXPECT_TRUE(isYellow);
}

TEST_F(WindowTest, commandsHaveTheirPicturesInTheMenus)
{
    int pictures = 0;
    for (const QAction *const action : widget().findChildren<QAction *>())
        pictures += action->icon().isNull() ? 0 : 1;
    EXPECT_GE(pictures, 25);
}

TEST_F(WindowTest, buttonsOfToolsAndBannersHaveTheirPicturesToo)
{
    for (const QString &name :
         {u"clearLogButton"_s, u"findPreviousButton"_s, u"findNextButton"_s, u"findDoneButton"_s,
          u"outcomeShowInFolder"_s, u"outcomeCopyIdentifier"_s, u"outcomeGoOnWaiting"_s, u"outcomeTryAgain"_s,
          u"outcomeNewDocument"_s, u"setupPractice"_s, u"setupDeveloperID"_s, u"setupNotNow"_s,
          u"waitingGoOn"_s, u"waitingDismiss"_s})
        EXPECT_FALSE(part<QAbstractButton>(name).icon().isNull()) << name.toStdString();
}
