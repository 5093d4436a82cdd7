// What the service's receipt says, what it is asked with, and how often it is asked afterwards.

#include "notarization/altoolarguments.h"
#include "notarization/pollinginfo.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

TEST(UploadArguments, withAProviderAreThirteen)
{
    EXPECT_EQ(
        altoolarguments::upload(u"/w/My App.zip"_s, u"com.example.foo"_s,
                                {u" dev@example.com"_s, u"my key"_s, u"Team1"_s}),
        (QStringList{u"--notarize-app"_s, u"-f"_s, u"/w/My App.zip"_s, u"--primary-bundle-id"_s,
                     u"com.example.foo"_s, u"-u"_s, u" dev@example.com"_s, u"-p"_s, u"@keychain:my key"_s,
                     u"--asc-provider"_s, u"Team1"_s, u"--output-format"_s, u"xml"_s}));
}

TEST(UploadArguments, withoutAProviderAreEleven)
{
    const QStringList eleven{u"--notarize-app"_s,
                             u"-f"_s,
                             u"/w/a.zip"_s,
                             u"--primary-bundle-id"_s,
                             u"com.example.foo"_s,
                             u"-u"_s,
                             u"a@b.c"_s,
                             u"-p"_s,
                             u"@keychain:key"_s,
                             u"--output-format"_s,
                             u"xml"_s};
    EXPECT_EQ(altoolarguments::upload(u"/w/a.zip"_s, u"com.example.foo"_s, {u"a@b.c"_s, u"key"_s, u""_s}),
              eleven);
    EXPECT_EQ(altoolarguments::upload(u"/w/a.zip"_s, u"com.example.foo"_s, {u"a@b.c"_s, u"key"_s, {}}),
              eleven);
}

// The receipt

struct ReceiptRow {
    const char *situation;
    QByteArray output;
    const char *identifier; ///< null: there is none, and so no receipt
    const char *message = nullptr;
};

class Receipt : public testing::TestWithParam<ReceiptRow> { };

TEST_P(Receipt, isReadForItsIdentifier)
{
    const auto receipt = uploadReceipt(GetParam().output);
    ASSERT_EQ(receipt.has_value(), GetParam().identifier != nullptr);
    if (!receipt)
        return;
    EXPECT_EQ(receipt->requestUUID, QString::fromUtf8(GetParam().identifier));
    EXPECT_EQ(receipt->successMessage.isNull(), GetParam().message == nullptr);
    EXPECT_EQ(receipt->successMessage, QString::fromUtf8(GetParam().message));
}

namespace {

QByteArray list(const QByteArray &entries)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries
        + "</dict></plist>\n";
}

QByteArray upload(const QByteArray &entries)
{
    return "<key>notarization-upload</key><dict>" + entries + "</dict>";
}

const QByteArray messageEntry = "<key>success-message</key><string>No errors uploading.</string>";

} // namespace

INSTANTIATE_TEST_SUITE_P(
    Rows, Receipt,
    testing::Values(
        ReceiptRow{"complete", list(upload("<key>RequestUUID</key><string>1-a</string>") + messageEntry),
                   "1-a", "No errors uploading."},
        ReceiptRow{"withoutAMessage", list(upload("<key>RequestUUID</key><string>1-a</string>")), "1-a"},
        ReceiptRow{"withAnEmptyMessage",
                   list(upload("<key>RequestUUID</key><string>1-a</string>")
                        + "<key>success-message</key><string></string>"),
                   "1-a", ""},
        ReceiptRow{"anIdentifierOfAnyForm",
                   list(upload("<key>RequestUUID</key><string> no ünïque id\n</string>")),
                   " no \xc3\xbcn\xc3\xafque id\n"},
        ReceiptRow{"inTheOldTextForm", "{ \"notarization-upload\" = { RequestUUID = abc; }; }", "abc"},
        ReceiptRow{"aMessageOnly", list(messageEntry), nullptr},
        ReceiptRow{"anUploadWithoutIdentifier", list(upload("") + messageEntry), nullptr},
        ReceiptRow{"anIdentifierAtTheTop", list("<key>RequestUUID</key><string>1-a</string>"), nullptr},
        ReceiptRow{"anUploadThatIsNoDictionary",
                   list("<key>notarization-upload</key><string>RequestUUID</string>"), nullptr},
        ReceiptRow{"anArray", "<plist version=\"1.0\"><array><string>RequestUUID</string></array></plist>",
                   nullptr},
        ReceiptRow{"nothing", "", nullptr},
        ReceiptRow{"cutOff", list(upload("<key>RequestUUID</key><string>1-a</string>")).chopped(20), nullptr},
        ReceiptRow{"garbage", QByteArray("\x00\xff\x80 RequestUUID: 1-a", 19), nullptr},
        ReceiptRow{"plainText", "No errors uploading '/w/a.zip'.\nRequestUUID = 1-a\n", nullptr}),
    [](const auto &row) { return row.param.situation; });

// The delay

struct DelayRow {
    const char *situation;
    float preference;
    double delay;
};

class PollingDelay : public testing::TestWithParam<DelayRow> { };

TEST_P(PollingDelay, isHeldBetween20And300Seconds)
{
    EXPECT_EQ(limitedPollingDelay(GetParam().preference), GetParam().delay);
}

INSTANTIATE_TEST_SUITE_P(Rows, PollingDelay,
                         testing::Values(DelayRow{"zero", 0, 20}, DelayRow{"negative", -5, 20},
                                         DelayRow{"justTooShort", 19.9f, 20}, DelayRow{"shortest", 20, 20},
                                         DelayRow{"ordinary", 30, 30},
                                         DelayRow{"aFraction", 30.1f, static_cast<double>(30.1f)},
                                         DelayRow{"longest", 300, 300}, DelayRow{"tooLong", 1000, 300},
                                         DelayRow{"endless", std::numeric_limits<float>::infinity(), 300},
                                         DelayRow{"noNumber", std::numeric_limits<float>::quiet_NaN(), 20}),
                         [](const auto &row) { return row.param.situation; });
