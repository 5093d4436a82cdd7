#include "scripting/definition/xmlelement.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(XmlElement, hasItsAttributesAndChildrenByName)
{
    const XmlElement root =
        XmlElement::parse("<a xmlns:y='urn:y' x='1' y:z='&lt;'><b n='1'/><c/><b n='2'><d/></b></a>");
    EXPECT_EQ(root.name, u"a"_s);
    EXPECT_EQ(root.attribute(u"x"_s), u"1"_s);
    EXPECT_EQ(root.attribute(u"y:z"_s), u"<"_s);
    EXPECT_TRUE(root.attribute(u"none"_s).isNull());
    EXPECT_FALSE(root.hasAttribute(u"none"_s));
    ASSERT_EQ(root.childrenNamed(u"b"_s).size(), 2);
    EXPECT_EQ(root.child(u"b"_s).attribute(u"n"_s), u"1"_s);
    EXPECT_EQ(root.childrenNamed(u"b"_s).last().child(u"d"_s).name, u"d"_s);
    EXPECT_TRUE(root.child(u"e"_s).name.isEmpty());
}

TEST(XmlElement, hasNoNameInATextThatIsNoXml)
{
    for (const char *const text : {"", "text", "<a><b></a>", "<a>"})
        EXPECT_TRUE(XmlElement::parse(text).name.isEmpty()) << text;
}
