#include "about/versionline.h"

#include <QLocale>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// The user's own locale, for the length of a test.
class UsersLocale {
public:
    explicit UsersLocale(const QLocale &locale) { QLocale::setDefault(locale); }
    ~UsersLocale() { QLocale::setDefault(m_before); }

private:
    const QLocale m_before;
};

struct DateRow {
    const char *situation;
    QLocale::Language language;
    QLocale::Territory territory;
    QString text;
};

class BuildDate : public testing::TestWithParam<DateRow> { };

} // namespace

TEST(VersionLine, hasItsPartsInOrder)
{
    EXPECT_EQ(versionLine({u"1.2"_s, u"34"_s, u"October 9, 2026"_s, u"64-bit Intel"_s, u"3 days"_s}),
              u"v1.2 (34) October 9, 2026, 64-bit Intel (3 days)"_s);
}

TEST(VersionLine, withoutAProcessorKeepsTheCommaAndBothBlanks)
{
    EXPECT_EQ(versionLine({u"1.2"_s, u"34"_s, u"October 9, 2026"_s, u""_s, u"3 days"_s}),
              u"v1.2 (34) October 9, 2026,  (3 days)"_s);
}

TEST(VersionLine, takesNoPartForAPlaceholder)
{
    EXPECT_EQ(versionLine({u"%2"_s, u"%1"_s, u"today"_s, u""_s, u"x"_s}), u"v%2 (%1) today,  (x)"_s);
}

TEST_P(BuildDate, followsTheUsersLocaleWhileItsParsingDoesNot)
{
    const UsersLocale locale(QLocale(GetParam().language, GetParam().territory));
    EXPECT_EQ(localizedBuildDate(u"Oct  9 2026"_s), GetParam().text);
    EXPECT_EQ(localizedBuildDate(u"Oct 09 2026"_s), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Languages, BuildDate,
    testing::Values(DateRow{"english", QLocale::English, QLocale::UnitedStates, u"October 9, 2026"_s},
                    DateRow{"british", QLocale::English, QLocale::UnitedKingdom, u"9 October 2026"_s},
                    DateRow{"german", QLocale::German, QLocale::Germany, u"9. Oktober 2026"_s},
                    DateRow{"french", QLocale::French, QLocale::France, u"9 octobre 2026"_s},
                    DateRow{"spanish", QLocale::Spanish, QLocale::Spain, u"9 de octubre de 2026"_s},
                    DateRow{"danish", QLocale::Danish, QLocale::Denmark, u"9. oktober 2026"_s},
                    DateRow{"hungarian", QLocale::Hungarian, QLocale::Hungary, u"2026. október 9."_s},
                    DateRow{"japanese", QLocale::Japanese, QLocale::Japan, u"2026年10月9日"_s}),
    [](const auto &row) { return row.param.situation; });

TEST(BuildDate, thatIsNoneIsEmpty)
{
    EXPECT_EQ(localizedBuildDate(u"9. Oktober 2026"_s), QString());
}

TEST(ProcessorText, namesIntelsAloneInABuildForThem)
{
#if defined(__x86_64__)
    EXPECT_EQ(processorText(), u"64-bit Intel"_s);
#else
    EXPECT_EQ(processorText(), u""_s);
#endif
}
