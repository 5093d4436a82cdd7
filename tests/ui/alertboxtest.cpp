#include "ui/alertbox.h"

#include <QAccessible>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QStringList titles(const AlertBox &box)
{
    QStringList titles;
    for (const auto *const button : box.buttons())
        titles.append(button->text());
    titles.sort();
    return titles;
}

void press(AlertBox &box, const QString &title)
{
    for (auto *const button : box.buttons()) {
        if (button->text() == title)
            return button->click();
    }
    ADD_FAILURE() << "no such button";
}

} // namespace

TEST(AlertBox, withoutButtonsThereIsOneThatSaysOK)
{
    AlertBox box({u"Title"_s, u"Text"_s, {}});
    EXPECT_EQ(titles(box), QStringList{u"OK"_s});
    box.open();
    press(box, u"OK"_s);
    EXPECT_EQ(box.answer(), platform::alertFirstButton);
}

TEST(AlertBox, theAnswerCountsTheButtonsAsTheyWereGiven)
{
    for (const auto &[title, answer] : {std::pair{u"Set"_s, 1000}, std::pair{u"Cancel"_s, 1001}}) {
        AlertBox box({u"Title"_s, u"Text"_s, {u"Set"_s, u"Cancel"_s}});
        box.open();
        press(box, title);
        EXPECT_EQ(box.answer(), answer);
    }
}

TEST(AlertBox, returnPressesTheFirstButtonAndEscapeTheOneThatCancels)
{
    const platform::Alert alert{u"Title"_s, u"Text"_s, {u"Choose"_s, u"Cancel"_s}};
    for (const auto &[key, answer] : {std::pair{Qt::Key_Return, 1000}, std::pair{Qt::Key_Escape, 1001}}) {
        AlertBox box(alert);
        box.open();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&box));
        QTest::keyClick(&box, key);
        EXPECT_EQ(box.answer(), answer);
    }
}

TEST(AlertBox, whatLooksLikeMarkupIsShownAsItStands)
{
    const AlertBox box({u"<b>Title</b>"_s, u"See <i>there</i>"_s, {}});
    const auto *const text = box.findChild<QLabel *>(u"qt_msgbox_label"_s);
    const auto *const more = box.findChild<QLabel *>(u"qt_msgbox_informativelabel"_s);
    ASSERT_TRUE(text && more);
    EXPECT_EQ(text->textFormat(), Qt::PlainText);
    EXPECT_EQ(more->textFormat(), Qt::PlainText);
    EXPECT_EQ(more->text(), u"See <i>there</i>"_s);
}

TEST(AlertBox, aLetterPressesItsButtonWithAltOrAlone)
{
    const platform::Alert alert{u"Title"_s, u"Text"_s, {u"Cancel"_s, u"Close"_s}};
    const QList<std::pair<Qt::Key, int>> letters{{Qt::Key_C, 1000}, {Qt::Key_L, 1001}};
    for (const auto &[key, answer] : letters) {
        for (const auto modifier : {Qt::AltModifier, Qt::NoModifier}) {
            AlertBox box(alert);
            box.open();
            ASSERT_TRUE(QTest::qWaitForWindowActive(&box));
            QTest::keyClick(&box, key, modifier);
            ASSERT_TRUE(QTest::qWaitFor([&box] { return !box.isVisible(); })) << key;
            EXPECT_EQ(box.answer(), answer);
        }
    }
}

TEST(AlertBox, itsButtonsReadLetterForLetterAllTheSame)
{
    AlertBox box({u"Title"_s, u"Text"_s, {u"OK"_s, u"Show File"_s}});
    EXPECT_EQ(titles(box), (QStringList{u"OK"_s, u"Show File"_s}));
    for (auto *const button : box.buttons()) {
        auto *const read = QAccessible::queryAccessibleInterface(button);
        EXPECT_EQ(read->text(QAccessible::Name), button->text());
        const QStringList keys =
            read->actionInterface()->keyBindingsForAction(QAccessibleActionInterface::pressAction());
        EXPECT_EQ(keys, QStringList{button->text() == "OK"_L1 ? u"Alt+O"_s : u"Alt+S"_s});
    }
}

TEST(AlertBox, aRemedyIsTheLastButtonAndNeitherReturnNorEscapePressesIt)
{
    for (const auto key : {Qt::Key_Return, Qt::Key_Escape}) {
        platform::Alert alert{u"Title"_s, u"Text"_s, {}};
        alert.remedy = u"Settings…"_s;
        AlertBox box(alert);
        EXPECT_EQ(titles(box), (QStringList{u"OK"_s, u"Settings…"_s}));
        box.open();
        QTest::keyClick(&box, key);
        EXPECT_EQ(box.answer(), platform::alertFirstButton);
    }
    platform::Alert alert{u"Title"_s, u"Text"_s, {}};
    alert.remedy = u"Settings…"_s;
    AlertBox box(alert);
    box.open();
    press(box, u"Settings…"_s);
    EXPECT_EQ(box.answer(), platform::alertSecondButton);
}
