// What is wrong with the fields of a document, before anybody presses Submit.

#include "ui/fieldhint.h"

#include "document/documentcommands.h"
#include "support/items.h"

#include "windowtest.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace {

class FieldHintTest : public WindowTest {
protected:
    QLineEdit &appleID() { return part<QLineEdit>(u"appleIDField"_s); }
    FieldHint &hint(const QString &field) { return part<FieldHint>(field + u"Hint"_s); }
};

} // namespace

TEST_F(FieldHintTest, isSilentUntilSomebodyHasBeenInTheField)
{
    document().appleIDField.setStringValue(u""_s);
    EXPECT_FALSE(hint(u"appleIDField"_s).isVisible());
    appleID().setFocus();
    until([this] { return appleID().hasFocus(); });
    QTest::keyClicks(&appleID(), u"m"_s);
    QTest::keyClick(&appleID(), Qt::Key_Tab);
    EXPECT_TRUE(hint(u"appleIDField"_s).isVisible());
    EXPECT_EQ(appleID().accessibleDescription(), hint(u"appleIDField"_s).text());
}

TEST_F(FieldHintTest, goesWithWhatIsTyped)
{
    document().appleIDField.setStringValue(u""_s);
    hint(u"appleIDField"_s).insist();
    EXPECT_TRUE(hint(u"appleIDField"_s).isVisible());
    QTest::keyClicks(&appleID(), u"me@example.com"_s);
    EXPECT_FALSE(hint(u"appleIDField"_s).isVisible());
    EXPECT_EQ(appleID().accessibleDescription(), QString());
}

TEST_F(FieldHintTest, speaksByItselfWhileAnItemWaits)
{
    document().appleIDField.setStringValue(u""_s);
    document().appPassField.setStringValue(u"x"_s);
    items::makeBundle(host.item(u"Foo.app"_s));
    document().commands().submit.prepareForDirectSubmit(QUrl::fromLocalFile(host.item(u"Foo.app"_s)), {});
    EXPECT_TRUE(hint(u"appleIDField"_s).isVisible());
    EXPECT_TRUE(hint(u"appPassField"_s).isVisible());
}

TEST_F(FieldHintTest, isNotThereForFieldsThatWouldDo)
{
    hint(u"appleIDField"_s).insist();
    hint(u"appPassField"_s).insist();
    EXPECT_FALSE(hint(u"appleIDField"_s).isVisible());
    EXPECT_FALSE(hint(u"appPassField"_s).isVisible());
    EXPECT_FALSE(part<QWidget>(u"identitiesPopupHint"_s).isVisible());
}
