// The road of one submission, from Submit to its finished folder.

#include "support/items.h"
#include "support/testhost.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

class Submission : public testing::Test {
protected:
    Submission() { items::makeBundle(host.item(u"Foo.app"_s)); }

    TestHost host;
};

TEST_F(Submission, anAppEndsInItsNotarizedFolder)
{
    host.launch();
    const QByteArray original = items::fingerprint(host.item(u"Foo.app"_s));
    host.submitToTheEnd(host.item(u"Foo.app"_s));
    EXPECT_EQ(host.listing(), QStringList{u"Foo - Notarized"_s});
    EXPECT_EQ(host.listing(u"Foo - Notarized"_s),
              (QStringList{u"Entitlements.plist"_s, u"Foo - Unmodified Original"_s, u"Foo.app"_s,
                           u"RequestUUID.txt"_s, u"Submission Log.txt"_s}));
    EXPECT_EQ(items::fingerprint(host.item(u"Foo - Notarized/Foo - Unmodified Original/Foo.app"_s)),
              original);
    EXPECT_EQ(host.text(u"Foo - Notarized/RequestUUID.txt"_s), u"1234-abcd"_s);
    EXPECT_EQ(host.tools.order(),
              (QStringList{u"altool--notarization-history"_s, u"xattr"_s, u"codesign"_s, u"ditto"_s,
                           u"altool--notarize-app"_s, u"altool--notarization-info"_s, u"stapler"_s}));
    ASSERT_TRUE(host.window().sheet);
    EXPECT_EQ(host.window().sheet->alert.messageText, u"Stapling Successful"_s);
}
