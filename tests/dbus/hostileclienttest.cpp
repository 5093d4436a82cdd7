// A client that sends what no script would, or more of it than any script would.

#include "dbus/hostonbus.h"

#include "scripting/dbus/busobject.h"
#include "scripting/dbus/busvalue.h"
#include "scripting/definition/scriptingdefinition.h"

#include <QDBusSignature>
#include <QDBusVariant>
#include <QDir>

using namespace Qt::StringLiterals;
using scriptingdefinition::Type;
using scriptingdefinition::ValueType;

namespace {

struct OddValue {
    QVariant value;
    QList<ValueType> fits; ///< the types that it is a value of
};

QList<OddValue> oddValues()
{
    return {
        {u"x"_s, {{Type::text}, {Type::file}}},
        {true, {{Type::boolean}}},
        {QVariant::fromValue<uchar>(1), {{Type::integer}, {Type::real}}},
        {-1, {{Type::integer}, {Type::real}}},
        {std::numeric_limits<qulonglong>::max(), {{Type::real}}},
        {1.5, {{Type::real}}},
        {QStringList{u"x"_s}, {{Type::text, true}}},
        {QByteArray("x"), {}},
        {QVariantList{1}, {}},
        {QVariantMap{{u"x"_s, 1}}, {}},
        {QVariant::fromValue(QDBusObjectPath(u"/x"_s)), {}},
        {QVariant::fromValue(QList{QDBusObjectPath(u"/x"_s)}),
         {{Type::window, true}, {Type::document, true}}},
        {QVariant::fromValue(QDBusSignature(u"s"_s)), {}},
        {QVariant::fromValue(QDBusVariant(u"x"_s)), {}},
        {QVariant::fromValue(QDBusVariant(QVariantList())), {}},
    };
}

/// Nested as deeply as the bus lets a message be.
QVariant nested()
{
    QVariant value = u"x"_s;
    for (int depth = 0; depth < 20; ++depth)
        value = QVariantList{value};
    return value;
}

} // namespace

class HostileClient : public HostOnBus {
protected:
    struct Receiver {
        QString path;
        const BusInterface &interface;
    };
    QList<Receiver> receivers()
    {
        return {{bus::applicationPath, applicationInterface()},
                {documentPath(), documentInterface()},
                {windowPath(), windowInterface()}};
    }
    void expectUnharmed()
    {
        EXPECT_EQ(ofApplication(u"AppStatus"_s), QVariant(u"ready"_s));
        EXPECT_EQ(ofDocument(u"DocStatus"_s), QVariant(u"ready"_s));
        EXPECT_EQ(host.application().allControllers().size(), 1);
        EXPECT_TRUE(host.tools.calls().isEmpty());
    }
};

TEST_F(HostileClient, setsNoPropertyToAValueOfAnotherType)
{
    for (const auto &[path, interface] : receivers()) {
        for (const BusProperty &property : interface.properties) {
            for (const auto &[value, fits] : oddValues()) {
                const auto &[term, key, name, type, isWritable, isWithdrawn] = property.definition;
                if (fits.contains(type))
                    continue;
                const QString error = errorOf(client.set(path, interface.name, name, value));
                const QString expected = !property.write ? buserror::propertyReadOnly : buserror::invalidArgs;
                if (property.takes == Takes::anything)
                    EXPECT_TRUE(error.startsWith(u"org.sealwright.Error."_s)) << name.toStdString();
                else
                    EXPECT_EQ(error, expected) << name.toStdString();
            }
        }
    }
    expectUnharmed();
}

TEST_F(HostileClient, startsNoCommandWithAnArgumentOfAnotherType)
{
    for (const auto &[path, interface] : receivers()) {
        const QString className = interface.name.section(u'.', -1).toLower();
        for (const auto &command : scriptingdefinition::classNamed(className)->commands) {
            if (command.hasOwnForm)
                continue;
            for (const auto &parameter : command.parameters) {
                for (const auto &[value, fits] : oddValues()) {
                    if (fits.contains(parameter.type) && parameter.type.type != Type::file)
                        continue;
                    const QString error = errorOf(client.call(path, interface.name, command.busName,
                                                              {QVariantMap{{parameter.key, value}}}));
                    const bool isFile = parameter.type.type == Type::file;
                    EXPECT_EQ(error, isFile ? u"org.sealwright.Error.N6"_s : buserror::invalidArgs)
                        << command.busName.toStdString() << " " << parameter.key.toStdString();
                }
            }
        }
    }
    expectUnharmed();
}

TEST_F(HostileClient, losesNoFolderByAFileNameWithANullCharacter)
{
    const QString folder = host.item(u"Project"_s);
    ASSERT_TRUE(QDir().mkpath(folder + u"/kept"_s));
    const QString url = QUrl::fromLocalFile(folder).toString(QUrl::FullyEncoded) + u"%00.app"_s;
    for (const QString &command : {u"SubmitForNotarizing"_s, u"SignOnly"_s, u"StapleOnly"_s}) {
        EXPECT_EQ(errorOf(client.call(bus::applicationPath, bus::applicationInterface, command,
                                      {QVariantMap{{u"at"_s, url}}})),
                  u"org.sealwright.Error.N6"_s);
        host.settle();
    }
    EXPECT_TRUE(QFile::exists(folder + u"/kept"_s));
    expectUnharmed();
}

TEST_F(HostileClient, callsNoMethodWithOtherArguments)
{
    for (const auto &[path, interface] : receivers()) {
        for (const BusMethod &method : interface.methods) {
            for (const QVariantList &arguments :
                 {QVariantList{1, 2, 3}, QVariantList{u"x"_s}, QVariantList{nested()}})
                EXPECT_EQ(errorOf(client.call(path, interface.name, method.name, arguments)),
                          buserror::invalidArgs)
                    << method.name.toStdString();
        }
    }
    expectUnharmed();
}

TEST_F(HostileClient, makesNoDocumentOfValuesOfOtherTypes)
{
    for (const QVariant &value : {nested(), QVariant(QVariantMap{{u"x"_s, nested()}})})
        EXPECT_EQ(errorOf(makeDocument({{u"AppleID"_s, value}})), buserror::invalidArgs);
    EXPECT_EQ(errorOf(makeDocument({{u""_s, 1}})), buserror::invalidArgs);
    expectUnharmed();
}

TEST_F(HostileClient, getsAHugeTextBackAsItIs)
{
    const QString huge(8 * 1024 * 1024, u'é');
    for (const QString &name : {u"AppleID"_s, u"ProviderName"_s}) {
        EXPECT_EQ(failureOf(setOfDocument(name, huge)), u"no error"_s);
        EXPECT_TRUE(ofDocument(name) == QVariant(huge)) << name.toStdString();
    }
    EXPECT_EQ(failureOf(setOfApplication(u"AppPassword"_s, huge)), u"no error"_s);
    EXPECT_TRUE(ofApplication(u"AppPassword"_s) == QVariant(huge));
    expectUnharmed();
}

TEST_F(HostileClient, isToldThatAHugeNameNamesNothing)
{
    const QString huge(4 * 1024 * 1024, u'x');
    EXPECT_EQ(errorOf(client.tryToGet(bus::applicationPath, bus::applicationInterface, huge)),
              buserror::unknownProperty);
    EXPECT_EQ(failureOf(setOfDocument(u"ActiveIdentity"_s, huge)), u"N6 "_s);
    EXPECT_EQ(failureOf(setOfDocument(u"ExtraEntitlements"_s, u"file:///"_s + huge)), u"N6 "_s);
    EXPECT_TRUE(failureOf(setOfDocument(u"DropDMGConfig"_s, huge)).startsWith(u"N1203"_s));
    EXPECT_EQ(failureOf(client.end(client.beginSubmit({{u"at"_s, u"file:///%1.app"_s.arg(huge)}}))),
              u"N6 "_s);
    expectUnharmed();
}

TEST_F(HostileClient, sendsManyArgumentsThatNobodyReads)
{
    QVariantMap arguments;
    for (int number = 0; number < 10000; ++number)
        arguments.insert(u"key%1"_s.arg(number), number);
    EXPECT_EQ(failureOf(client.end(client.beginSubmit(arguments))), u"N6 "_s);
    expectUnharmed();
}

TEST_F(HostileClient, isAnsweredTenThousandTimesAtOnce)
{
    constexpr int rounds = 2500;
    const QString path = documentPath();
    QList<QDBusPendingCall> calls;
    for (int round = 0; round < rounds; ++round) {
        calls << client.begin(path, bus::propertiesInterface, u"Get"_s,
                              {bus::documentInterface, u"DocStatus"_s})
              << client.begin(bus::applicationPath, bus::applicationInterface, u"SubmitForNotarizing"_s,
                              {QVariantMap{{u"at"_s, u"file:///none.app"_s}}})
              << client.begin(path, bus::documentInterface, u"NoSuchMethod"_s, {round})
              << client.begin(path, bus::propertiesInterface, u"Set"_s,
                              {bus::documentInterface, u"AppleID"_s,
                               QVariant::fromValue(QDBusVariant(QString::number(round)))});
    }
    QHash<QString, int> answers;
    for (const QDBusPendingCall &call : calls)
        ++answers[failureOf(client.end(call)).section(u' ', 0, 0)];
    EXPECT_EQ(answers,
              (QHash<QString, int>{{u"no"_s, 2 * rounds}, {u"N6"_s, rounds}, {u"UnknownMethod"_s, rounds}}));
    EXPECT_EQ(ofDocument(u"AppleID"_s), QVariant(QString::number(rounds - 1)));
    expectUnharmed();
}

TEST_F(HostileClient, vanishesWithItsCallsUnanswered)
{
    auto leaving = std::make_unique<BusClient>(host);
    const QString path = documentPath();
    for (int round = 0; round < 1000; ++round)
        leaving->begin(path, bus::documentInterface, round % 2 ? u"FetchLog"_s : u"Cancel"_s,
                       round % 2 ? QVariantList{QVariantMap()} : QVariantList());
    leaving.reset();
    expectUnharmed();
    host.settle();
}

TEST_F(HostileClient, vanishesAndItsSubmissionGoesOnToTheEnd)
{
    auto leaving = std::make_unique<BusClient>(host);
    host.tools.answerRun(u"altool--notarization-history"_s, 1, {.hangs = true});
    leaving->beginSubmit({{u"at"_s, appURL()}}, documentPath());
    waitForCredentialCheck();
    leaving.reset();
    host.tools.release(u"altool--notarization-history"_s, 1);
    host.settle();
    host.firePolls();
    EXPECT_TRUE(host.listing().contains(u"Foo - Notarized"_s));
    EXPECT_EQ(ofDocument(u"DocStatus"_s), QVariant(u"ready"_s));
}

TEST_F(HostileClient, findsTextsBoundedByALengthThatTheErrorNames)
{
    const QString tooLong(busvalue::mostCharacters + 1, u'x');
    const QDBusMessage answer = setOfDocument(u"AppleID"_s, tooLong);
    EXPECT_EQ(errorOf(answer), buserror::invalidArgs);
    EXPECT_EQ(errorTextOf(answer), u"AppleID takes at most 16777216 characters."_s);
    EXPECT_EQ(errorOf(setOfDocument(u"PathsToSkip"_s, QStringList(9, QString(2'000'000, u'x')))),
              buserror::invalidArgs);
    EXPECT_EQ(errorOf(makeDocument({{u"AppleID"_s, tooLong}})), buserror::invalidArgs);
    expectUnharmed();
}

TEST_F(HostileClient, readsTextsWithNullCharactersToTheirEnd)
{
    host.document().logString(u"be"_s + QChar::Null + u"hind"_s);
    const QDBusMessage answer =
        client.call(documentPath(), bus::documentInterface, u"FetchLog"_s, {QVariantMap()});
    EXPECT_TRUE(variantOf(answer).toString().endsWith(u"be\uFFFDhind\n"_s));
}

TEST_F(HostileClient, keepsItsConnectionWhereAnAnswerIsTooLargeForIt)
{
    host.document().statusTextView.append({QString(34 * 1024 * 1024, u'x'), LogStyle::plain, {}});
    const QDBusMessage answer =
        client.call(documentPath(), bus::documentInterface, u"FetchLog"_s, {QVariantMap()});
    EXPECT_EQ(errorOf(answer), buserror::limitsExceeded);
    EXPECT_EQ(ofDocument(u"DocStatus"_s), QVariant(u"ready"_s));
}

TEST_F(HostileClient, isToldWhichWindowIsNone)
{
    const QDBusMessage answer = client.set(windowPath(), bus::windowInterface, u"ParentWindow"_s,
                                           QVariant::fromValue(QDBusObjectPath(bus::windowsPath + u"/99"_s)));
    EXPECT_EQ(errorTextOf(answer),
              u"ParentWindow takes a window, and %1/99 is none."_s.arg(bus::windowsPath));
}
