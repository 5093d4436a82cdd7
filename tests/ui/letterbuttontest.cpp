#include "ui/letterbutton.h"

#include <QStyleOptionButton>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// Says with what text the style draws it.
class DrawnButton : public LetterButton {
public:
    using LetterButton::LetterButton;

    QString drawnText() const
    {
        QStyleOptionButton option;
        initStyleOption(&option);
        return option.text;
    }
};

struct LettersRow {
    const char *situation;
    QStringList titles;
    QStringList drawn;
};

class Letters : public testing::TestWithParam<LettersRow> { };

} // namespace

TEST_P(Letters, areDistinctAndLeaveTheTextAsItIs)
{
    std::vector<std::unique_ptr<DrawnButton>> buttons;
    QList<LetterButton *> all;
    for (const QString &title : GetParam().titles) {
        buttons.push_back(std::make_unique<DrawnButton>(title));
        all.append(buttons.back().get());
    }
    LetterButton::assignLetters(all);
    QStringList texts;
    QStringList drawn;
    for (const auto &button : buttons) {
        texts.append(button->text());
        drawn.append(button->drawnText());
        EXPECT_EQ(button->shortcut(), QKeySequence::mnemonic(button->drawnText()));
    }
    EXPECT_EQ(texts, GetParam().titles);
    EXPECT_EQ(drawn, GetParam().drawn);
}

INSTANTIATE_TEST_SUITE_P(
    OfButtons, Letters,
    testing::Values(
        LettersRow{"thatBeginTheTitles", {u"OK"_s, u"Show File"_s}, {u"&OK"_s, u"&Show File"_s}},
        LettersRow{"inTheMiddleWhereTheFirstIsTaken", {u"Cancel"_s, u"Close"_s}, {u"&Cancel"_s, u"C&lose"_s}},
        LettersRow{"ofTheSecondWordBeforeThoseInTheMiddle",
                   {u"Show"_s, u"show file"_s},
                   {u"&Show"_s, u"show &file"_s}},
        LettersRow{"noneWhereAllAreTaken", {u"No"_s, u"On"_s, u"no"_s}, {u"&No"_s, u"&On"_s, u"no"_s}},
        LettersRow{
            "besideASignThatMarksOne", {u"Salt & Pepper"_s, u"Stop"_s}, {u"&Salt && Pepper"_s, u"S&top"_s}}),
    [](const auto &row) { return row.param.situation; });

TEST(LetterButton, withoutALetterItIsDrawnAsItReads)
{
    const DrawnButton button(u"Salt & Pepper"_s);
    EXPECT_EQ(button.drawnText(), u"Salt && Pepper"_s);
}
