// The scripting definition and what carries it out: nothing in one without the other.

#include "scripting/definition/scriptingdefinition.h"

#include "dbus/hostonbus.h"
#include "scripting/dbus/busobject.h"
#include "scripting/dbus/busvalue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using scriptingdefinition::Class;
using scriptingdefinition::Command;
using scriptingdefinition::Term;
using scriptingdefinition::Type;
using scriptingdefinition::ValueType;

namespace {

struct ClassRow {
    const char *name;
    const BusHandlers &(*handlers)();
    const BusInterface &(*interface)();
};

QStringList sorted(QStringList names)
{
    names.sort();
    return names;
}

/// A record is what GetAll answers, and no property of its own.
QStringList keysOnTheBus(const Class &definition)
{
    QStringList keys;
    for (const scriptingdefinition::Property &property : definition.properties) {
        if (property.type.type != Type::record)
            keys.append(property.key);
    }
    return sorted(keys);
}

class DefinedClass : public testing::TestWithParam<ClassRow> {
protected:
    const Class &definition() const
    {
        return *scriptingdefinition::classNamed(QString::fromLatin1(GetParam().name));
    }
    const BusHandlers &handlers() const { return GetParam().handlers(); }
    const BusInterface &interface() const { return GetParam().interface(); }

    QStringList handledKeys() const
    {
        QStringList keys;
        for (const BusRow &row : handlers().properties)
            keys.append(row.key);
        return keys;
    }
};

} // namespace

TEST_P(DefinedClass, hasAPropertyForEachThatIsHandledAndNoOther)
{
    EXPECT_EQ(keysOnTheBus(definition()), sorted(handledKeys()));
    EXPECT_EQ(interface().properties.size(), handlers().properties.size());
}

TEST_P(DefinedClass, hasACommandForEachThatIsHandledAndNoOther)
{
    QStringList methods;
    for (const Command &command : definition().commands)
        methods.append(command.method);
    EXPECT_EQ(sorted(methods), sorted(handlers().methods.keys()));
    EXPECT_EQ(interface().methods.size(), methods.size());
}

TEST_P(DefinedClass, canBeWrittenWhereItSaysSoAndWhereARefusalHasANumberOnly)
{
    for (const BusProperty &property : interface().properties) {
        const bool isRefusal = property.write && property.takes == Takes::anything;
        const bool isAsDefined =
            property.definition.isWritable ? property.write != nullptr : !property.write || isRefusal;
        EXPECT_TRUE(isAsDefined) << property.definition.key.toStdString();
    }
}

TEST_P(DefinedClass, hasNoNameOnTheBusTwice)
{
    QStringList names;
    for (const BusProperty &property : interface().properties)
        names.append(property.definition.busName);
    for (const BusMethod &method : interface().methods)
        names.append(method.name);
    EXPECT_EQ(names.removeDuplicates(), 0);
    EXPECT_FALSE(names.contains(QString()));
}

INSTANTIATE_TEST_SUITE_P(Classes, DefinedClass,
                         testing::Values(ClassRow{"application", applicationHandlers, applicationInterface},
                                         ClassRow{"document", documentHandlers, documentInterface},
                                         ClassRow{"window", windowHandlers, windowInterface}),
                         [](const auto &row) { return std::string(row.param.name); });

// The definition by itself

class ScriptingDefinition : public testing::Test {
protected:
    static QList<Term> propertyTerms()
    {
        QList<Term> terms;
        for (const Class &each : scriptingdefinition::classes()) {
            for (const scriptingdefinition::Property &property : each.properties)
                terms.append(property.term);
        }
        return terms;
    }
    static QList<Command> commands()
    {
        QList<Command> all;
        for (const Class &each : scriptingdefinition::classes())
            all += each.commands;
        return all;
    }
};

TEST_F(ScriptingDefinition, hasTheThreeClassesAndTheCodeOfTheApplication)
{
    QStringList names;
    for (const Class &each : scriptingdefinition::classes())
        names.append(each.term.name);
    EXPECT_EQ(names, (QStringList{u"application"_s, u"document"_s, u"window"_s}));
    EXPECT_EQ(scriptingdefinition::classNamed(u"application"_s)->term.code, u"capp"_s);
    EXPECT_EQ(scriptingdefinition::classNamed(u"nothing"_s), nullptr);
}

TEST_F(ScriptingDefinition, describesEverything)
{
    for (const Class &each : scriptingdefinition::classes()) {
        EXPECT_FALSE(each.term.description.isEmpty());
        for (const scriptingdefinition::Property &property : each.properties) {
            EXPECT_FALSE(property.term.description.isEmpty()) << property.key.toStdString();
            EXPECT_NE(property.type.type, Type::none) << property.key.toStdString();
        }
        for (const auto &event : each.events)
            EXPECT_FALSE(event.term.description.isEmpty()) << event.busName.toStdString();
    }
    for (const Command &command : commands()) {
        EXPECT_FALSE(command.term.description.isEmpty()) << command.method.toStdString();
        for (const auto &parameter : command.parameters) {
            EXPECT_FALSE(parameter.term.description.isEmpty()) << parameter.key.toStdString();
            EXPECT_FALSE(parameter.key.isEmpty());
        }
    }
}

TEST_F(ScriptingDefinition, hasOneCodeForATermAndOneTermForACode)
{
    QHash<QString, QString> codes;
    QHash<QString, QString> names;
    for (const Term &term : propertyTerms()) {
        if (term.code.isNull()) // of elements, which go by their class
            continue;
        EXPECT_EQ(term.code.size(), 4) << term.name.toStdString();
        EXPECT_EQ(codes.value(term.name, term.code), term.code) << term.name.toStdString();
        EXPECT_EQ(names.value(term.code, term.name), term.name) << term.code.toStdString();
        codes.insert(term.name, term.code);
        names.insert(term.code, term.name);
    }
    for (const Command &command : commands())
        EXPECT_EQ(command.term.code.size(), 8) << command.method.toStdString();
}

TEST_F(ScriptingDefinition, namesACommandsArgumentsByTheirKeys)
{
    const Command *const submit =
        scriptingdefinition::classNamed(u"document"_s)->command(u"AESubmitForNotarizing:"_s);
    ASSERT_TRUE(submit);
    EXPECT_EQ(submit->busName, u"SubmitForNotarizing"_s);
    ASSERT_EQ(submit->parameters.size(), 3);
    EXPECT_EQ(submit->parameters[0].key, u"at"_s);
    EXPECT_EQ(submit->parameters[0].type, ValueType{Type::file});
    EXPECT_EQ(submit->parameters[1].key, u"showingDialogs"_s);
    EXPECT_EQ(submit->parameters[2].key, u"skippingStapling"_s);
    EXPECT_EQ(submit->result, ValueType{Type::file});
}

TEST_F(ScriptingDefinition, makesABusNameOfAKey)
{
    const Class &application = *scriptingdefinition::classNamed(u"application"_s);
    EXPECT_EQ(application.property(u"AEDeveloperIdentities"_s)->busName, u"DeveloperIdentities"_s);
    EXPECT_EQ(application.property(u"isActive"_s)->busName, u"IsActive"_s);
    EXPECT_EQ(application.property(u"orderedWindows"_s)->busName, u"OrderedWindows"_s);
    EXPECT_EQ(application.property(u"nothing"_s), nullptr);
}

struct TypeRow {
    ValueType type;
    const char *name;
    const char *signature;
};

class DefinedType : public testing::TestWithParam<TypeRow> { };

TEST_P(DefinedType, hasAWordAndAFormOnTheBus)
{
    EXPECT_EQ(name(GetParam().type), QString::fromLatin1(GetParam().name));
    EXPECT_EQ(busSignature(GetParam().type), QString::fromLatin1(GetParam().signature));
}

INSTANTIATE_TEST_SUITE_P(
    Types, DefinedType,
    testing::Values(TypeRow{{Type::text}, "text", "s"}, TypeRow{{Type::boolean}, "boolean", "b"},
                    TypeRow{{Type::integer}, "integer", "x"}, TypeRow{{Type::real}, "real", "d"},
                    TypeRow{{Type::text, true}, "list of text", "as"}, TypeRow{{Type::file}, "file", "s"},
                    TypeRow{{Type::window}, "window", "o"}, TypeRow{{Type::document}, "document", "o"},
                    TypeRow{{Type::window, true}, "list of window", "ao"},
                    TypeRow{{Type::rectangle}, "rectangle", "(nnnn)"}, TypeRow{{Type::any}, "any", "v"}));
