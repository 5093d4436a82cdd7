#include "ui/theme.h"
#include "ui/appearance.h"
#include "ui/controlpainting.h"
#include "ui/controlstyle.h"

#include "support/desktopsignal.h"
#include "support/fakehost.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using theme::contrast;

namespace {

/// The colours of a light and of a dark desktop.
class Theme : public testing::TestWithParam<uint> {
protected:
    Theme() { sayColourScheme(desktop, GetParam()); }
    ~Theme() override { QApplication::setPalette(QPalette()); }

    platform::DesktopAppearance desktop{QDBusConnection(u"none"_s)};
    MemoryPreferences preferences;
    FakeDistributedNotifications notifications;
    const Appearance appearance{desktop, preferences, notifications};
    const QPalette palette = QApplication::palette();
};

/// The greatest contrast that a pixel in that column of the middle row has with the ground.
qreal strongest(const QImage &image, const QColor &ground, int columns)
{
    qreal most = 1;
    for (int x = 0; x < columns; ++x)
        most = qMax(most, contrast(image.pixelColor(x, image.height() / 2), ground));
    return most;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Desktops, Theme, testing::Values(1U, 2U));

TEST_P(Theme, everyTextCanBeReadAlsoOfWhatIsOff)
{
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        for (const auto &[text, ground] :
             {std::pair(QPalette::WindowText, QPalette::Window), std::pair(QPalette::Text, QPalette::Base),
              std::pair(QPalette::PlaceholderText, QPalette::Base),
              std::pair(QPalette::ButtonText, QPalette::Button),
              std::pair(QPalette::HighlightedText, QPalette::Highlight)})
            EXPECT_GE(contrast(palette.color(group, text), palette.color(group, ground)), 4.5)
                << group << ' ' << text;
    }
}

TEST_P(Theme, everyMeaningCanBeReadOnAWindowAFieldAndItsBanner)
{
    using theme::Meaning;
    for (const Meaning meaning :
         {Meaning::good, Meaning::bad, Meaning::caution, Meaning::underway, Meaning::quiet}) {
        const QColor colour = theme::colourOf(meaning, palette);
        EXPECT_GE(contrast(colour, palette.color(QPalette::Window)), 4.5);
        EXPECT_GE(contrast(colour, palette.color(QPalette::Base)), 4.5);
        EXPECT_GE(contrast(palette.color(QPalette::WindowText), theme::groundOf(meaning, palette)), 4.5);
    }
}

TEST_P(Theme, anEmptyBoxAndAFieldCanBeSeen)
{
    ControlStyle style;
    QCheckBox box;
    QLineEdit field;
    for (QWidget *const widget : {static_cast<QWidget *>(&box), static_cast<QWidget *>(&field)}) {
        widget->setStyle(&style);
        widget->setPalette(palette);
        const QImage image = widget->grab().toImage();
        EXPECT_GE(strongest(image, palette.color(QPalette::Window), 6), 3.0)
            << widget->metaObject()->className();
    }
}

TEST_P(Theme, whatIsWrittenOnAButtonCanBeRead)
{
    using controlpainting::Weight;
    for (const Weight weight : {Weight::ordinary, Weight::primary}) {
        QStyleOption button;
        button.palette = palette;
        button.rect = {0, 0, 60, 30};
        button.state = QStyle::State_Enabled;
        QImage image(button.rect.size(), QImage::Format_RGB32);
        QPainter painter(&image);
        controlpainting::drawButton(painter, button, weight);
        const QColor ground = image.pixelColor(image.rect().center());
        EXPECT_GE(contrast(controlpainting::textOf(button, weight), ground), 4.5) << int(weight);
    }
}

TEST_P(Theme, whatHasTheKeyboardHasARingThatCanBeSeen)
{
    ControlStyle style;
    QWidget window;
    window.setPalette(palette);
    QLineEdit field(&window);
    field.setStyle(&style);
    window.show();
    window.activateWindow();
    field.setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return field.hasFocus(); }));
    const QImage image = field.grab().toImage();
    EXPECT_GE(contrast(image.pixelColor(1, image.height() / 2), palette.color(QPalette::Window)), 3.0);
    EXPECT_GE(contrast(image.pixelColor(1, image.height() / 2), palette.color(QPalette::Base)), 3.0);
}

TEST(Contrast, isThatOfThePublishedExamples)
{
    EXPECT_NEAR(contrast(Qt::black, Qt::white), 21, 0.01);
    EXPECT_NEAR(contrast(QColor(0x76, 0x76, 0x76), Qt::white), 4.54, 0.01);
    EXPECT_NEAR(contrast(Qt::white, Qt::white), 1, 0.01);
}

TEST(Contrast, aColourIsMovedOnlyAsFarAsItMust)
{
    EXPECT_EQ(theme::readable(Qt::black, Qt::white, 4.5), QColor(Qt::black));
    const QColor moved = theme::readable(QColor(0xcc, 0xcc, 0xcc), Qt::white, 4.5);
    EXPECT_GE(contrast(moved, Qt::white), 4.5);
    EXPECT_LT(contrast(moved, Qt::white), 5.5);
}
