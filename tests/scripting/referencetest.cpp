#include "scripting/definition/reference.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString begin = u"<!-- made from resources/Sealwright.sdef: begin -->\n"_s;
const QString end = u"<!-- made from resources/Sealwright.sdef: end -->\n"_s;

} // namespace

TEST(ScriptingReference, ofTheDocumentIsWhatTheDefinitionSays)
{
    QFile file(QString::fromLatin1(SEALWRIGHT_SCRIPTING_DOCUMENT));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    EXPECT_TRUE(text == withScriptingReference(text))
        << "out of date: cmake --build build/release --target update_reference";
}

TEST(ScriptingReference, takesTheOldOnesPlaceAndLeavesTheRest)
{
    const QString text = withScriptingReference(u"before\n"_s + begin + u"old\n"_s + end + u"behind\n"_s);
    EXPECT_EQ(text, u"before\n"_s + begin + scriptingReference() + end + u"behind\n"_s);
}

TEST(ScriptingReference, hasNoPlaceInATextWithoutBothMarkers)
{
    EXPECT_TRUE(withScriptingReference(u"text\n"_s).isNull());
    EXPECT_TRUE(withScriptingReference(begin).isNull());
    EXPECT_TRUE(withScriptingReference(end + begin).isNull());
}

TEST(ScriptingReference, tellsAPropertysTypeAccessTermAndCode)
{
    EXPECT_TRUE(scriptingReference().contains(
        u"\n| `AppStatus` | text `s` | read | app status, `SWas` | loading, ready or interacting; "_s));
    EXPECT_TRUE(scriptingReference().contains(u"\n| `PathsToSkip` | list of text `as` | read, write | "_s));
}

TEST(ScriptingReference, tellsAMethodsArgumentsAndResult)
{
    EXPECT_TRUE(scriptingReference().contains(
        u"\n| `SignOnly` | `at` (file, needed): the item: an app or a plain folder<br>`showingDialogs` (boolean): "_s));
    EXPECT_TRUE(scriptingReference().contains(
        u"\n| `MakeDocument` | `properties` `a{sv}` | document `o`: the new document | "_s));
    EXPECT_TRUE(scriptingReference().contains(u"\n| `LogAppended` | `text` `s`: "_s));
}
