// What commands make of their arguments.

#include "scripting/commandchecks.h"
#include "platform/scriptcommand.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

struct IdentityRow {
    const char *situation;
    QVariant named;
    QString expected; ///< null if it is none of the known ones
};

class KnownIdentity : public testing::TestWithParam<IdentityRow> { };

TEST_P(KnownIdentity, isTheOneThatTheCommandNames)
{
    const auto command = std::make_shared<ScriptCommand>(
        QVariantMap{{argument::signingIdentity, GetParam().named}}, [](const ScriptReply &) {});
    const QString identity =
        commandchecks::knownIdentity(command, {u"First (A1)"_s, u"Developer ID Installer: Second (B2)"_s});
    EXPECT_EQ(identity, GetParam().expected) << identity.toStdString();
    EXPECT_EQ(identity.isNull(), GetParam().expected.isNull());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, KnownIdentity,
    testing::Values(IdentityRow{"byItsName", u"First (A1)"_s, u"First (A1)"_s},
                    IdentityRow{"withItsPrefix", u"Developer ID Application: First (A1)"_s, u"First (A1)"_s},
                    IdentityRow{"withItsPrefixTwice",
                                u"Developer ID Application: Developer ID Application: First (A1)"_s,
                                {}},
                    IdentityRow{"withAnotherPrefix", u"Developer ID Installer: First (A1)"_s, {}},
                    IdentityRow{"thatBeginsWithAnotherPrefix", u"Developer ID Installer: Second (B2)"_s,
                                u"Developer ID Installer: Second (B2)"_s},
                    IdentityRow{"inOtherLetters", u"first (a1)"_s, {}}, IdentityRow{"inPart", u"First"_s, {}},
                    IdentityRow{"unknown", u"Third (C3)"_s, {}}, IdentityRow{"empty", u""_s, {}},
                    IdentityRow{"notNamed", QVariant(), {}}),
    [](const auto &row) { return row.param.situation; });
