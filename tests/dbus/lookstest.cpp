// Looks at items, comparisons and what the service said, over a real bus. What looks is a program that writes
// down what it was given.

#include "dbus/hostonbus.h"

#include <QDBusObjectPath>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

const QByteArray looker = R"SCRIPT(#!/bin/sh
printf '%s\n' "$@" > "${0%/*}/given"
for item; do :; done
case $item in
*Unreadable.app) echo "sealwright-examine: It cannot be read." >&2; exit 4 ;;
*Crashing.app) kill -SEGV $$ ;;
*Refused.app) echo '{"refused": true}'; exit 1 ;;
esac
echo '{"refused": false}'
)SCRIPT";

} // namespace

class LooksOnBus : public HostOnBus {
protected:
    LooksOnBus()
        : HostOnBus([](TestHost &made) {
            items::makeFile(made.item(u"../tools/examine"_s), looker, true);
            made.configuration.examineProgram = made.item(u"../tools/examine"_s);
        })
    {
    }

    QDBusMessage examine(const QVariantMap &arguments)
    {
        return client.call(bus::applicationPath, bus::applicationInterface, u"Examine"_s, {arguments});
    }
    QDBusMessage examineInDocument(const QVariantMap &arguments)
    {
        return client.call(documentPath(), bus::documentInterface, u"Examine"_s, {arguments});
    }
    QDBusMessage compare(const QVariantMap &arguments)
    {
        return client.call(bus::applicationPath, bus::applicationInterface, u"Compare"_s, {arguments});
    }
    /// What the program was given the last time.
    QStringList given() const
    {
        QFile file(host.item(u"../tools/given"_s));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split(u'\n')
                                              : QStringList();
    }
    QJsonObject givenChoices() const { return QJsonDocument::fromJson(given().value(1).toUtf8()).object(); }
    static QString textOf(const QDBusMessage &answer) { return answer.arguments().value(0).toString(); }
    QVariant documentArgument() { return QVariant::fromValue(QDBusObjectPath(documentPath())); }
};

TEST_F(LooksOnBus, anExaminationIsAnsweredAsText)
{
    const QVariant answer = variantOf(examine({{u"at"_s, appURL()}}));
    EXPECT_EQ(answer.typeId(), QMetaType::QString);
    EXPECT_FALSE(
        QJsonDocument::fromJson(answer.toString().toUtf8()).object().value("refused"_L1).toBool(true));
    EXPECT_EQ(given().value(0), u"--choices"_s);
    EXPECT_EQ(given().value(3), host.item(u"Foo.app"_s));
    EXPECT_EQ(host.application().allControllers().size(), 1);
    EXPECT_EQ(host.log(), QStringList());
}

TEST_F(LooksOnBus, aRefusalIsAnAnswerAndNoError)
{
    const QVariant answer = variantOf(examine({{u"at"_s, appURL(u"Refused.app"_s)}}));
    EXPECT_TRUE(QJsonDocument::fromJson(answer.toString().toUtf8()).object().value("refused"_L1).toBool());
}

TEST_F(LooksOnBus, theChoicesAreThoseOfTheDocumentThatIsNamed)
{
    setOfDocument(u"PathsToSkip"_s, QStringList{u"Contents/tool"_s});
    setOfDocument(u"AllowJITCode"_s, true);
    examine({{u"at"_s, appURL()}});
    EXPECT_TRUE(givenChoices().value("skipPaths"_L1).toArray().isEmpty());
    EXPECT_FALSE(givenChoices().value("entitlements"_L1).toString().contains(u"allow-jit"_s));
    examine({{u"at"_s, appURL()}, {u"document"_s, documentArgument()}});
    EXPECT_EQ(givenChoices().value("skipPaths"_L1).toArray(), QJsonArray{u"Contents/tool"_s});
    EXPECT_TRUE(givenChoices().value("entitlements"_L1).toString().contains(u"allow-jit"_s));
    QFile::remove(host.item(u"../tools/given"_s));
    examineInDocument({{u"at"_s, appURL()}});
    EXPECT_EQ(givenChoices().value("skipPaths"_L1).toArray(), QJsonArray{u"Contents/tool"_s});
}

TEST_F(LooksOnBus, aDocumentThatIsNoneIsAWrongArgument)
{
    const QVariant other = QVariant::fromValue(QDBusObjectPath(bus::applicationPath + u"/document/nobody"_s));
    for (const QVariant &document : {other, QVariant(u"text"_s), QVariant(1)}) {
        EXPECT_EQ(errorOf(examine({{u"at"_s, appURL()}, {u"document"_s, document}})),
                  u"org.freedesktop.DBus.Error.InvalidArgs"_s);
    }
    EXPECT_TRUE(given().isEmpty());
    EXPECT_EQ(textOf(examine({{u"at"_s, appURL()}, {u"document"_s, other}})).toStdString(),
              "There is no object /org/sealwright/Sealwright/document/nobody.");
    EXPECT_EQ(textOf(examine({{u"at"_s, appURL()}, {u"document"_s, 1}})).toStdString(),
              "The argument document of Examine has the wrong type.");
}

TEST_F(LooksOnBus, withoutAnItemThatIsThereNothingIsLookedAt)
{
    const QList<QVariant> wrong{url(u"Gone.app"_s), u"/tmp"_s, u""_s, 7, u"https://example.com/Foo.app"_s};
    for (const QVariant &at : wrong) {
        EXPECT_EQ(errorOf(examine({{u"at"_s, at}})), u"org.sealwright.Error.N6"_s)
            << textOf(examine({{u"at"_s, at}})).toStdString();
        EXPECT_EQ(errorOf(examineInDocument({{u"at"_s, at}})), u"org.sealwright.Error.N6"_s);
        EXPECT_EQ(errorOf(compare({{u"old"_s, at}, {u"new"_s, appURL()}})), u"org.sealwright.Error.N6"_s);
        EXPECT_EQ(errorOf(compare({{u"old"_s, appURL()}, {u"new"_s, at}})), u"org.sealwright.Error.N6"_s);
    }
    for (const QVariantMap &lacking : {QVariantMap(), QVariantMap{{u"at"_s, nothing}}}) {
        EXPECT_EQ(errorOf(examine(lacking)), u"org.sealwright.Error.N6"_s);
        EXPECT_EQ(errorOf(examineInDocument(lacking)), u"org.sealwright.Error.N6"_s);
        EXPECT_EQ(errorOf(compare(lacking)), u"org.sealwright.Error.N6"_s);
    }
    EXPECT_EQ(textOf(examine({{u"at"_s, url(u"Gone.app"_s)}})),
              u"There is no item at '%1'."_s.arg(host.item(u"Gone.app"_s)));
    EXPECT_EQ(textOf(compare({})), u"The argument old names no item."_s);
    EXPECT_TRUE(given().isEmpty());
}

TEST_F(LooksOnBus, anItemThatCannotBeLookedAtIsAnErrorWithTheReason)
{
    const QDBusMessage unreadable = examine({{u"at"_s, appURL(u"Unreadable.app"_s)}});
    EXPECT_EQ(textOf(unreadable), u"It cannot be read."_s);
    const QDBusMessage crashed = examine({{u"at"_s, appURL(u"Crashing.app"_s)}});
    EXPECT_EQ(errorOf(crashed), errorOf(unreadable));
    EXPECT_TRUE(textOf(crashed).contains(u"could not be looked at"_s)) << textOf(crashed).toStdString();
    const QDBusMessage compared = compare({{u"old"_s, appURL()}, {u"new"_s, appURL(u"Unreadable.app"_s)}});
    EXPECT_EQ(errorOf(compared), errorOf(unreadable));
    EXPECT_EQ(textOf(compared), u"It cannot be read."_s);
}

TEST_F(LooksOnBus, aLookGoesAheadWhileTheDocumentIsAtWork)
{
    const QDBusPendingCall call = beginEndlessSubmission();
    EXPECT_EQ(variantOf(examineInDocument({{u"at"_s, appURL()}})).typeId(), QMetaType::QString);
    EXPECT_EQ(variantOf(examine({{u"at"_s, appURL()}})).typeId(), QMetaType::QString);
    cancel();
    client.end(call);
}

TEST_F(LooksOnBus, aComparisonIsAnsweredAsText)
{
    const QVariant answer = variantOf(compare({{u"old"_s, appURL(u"Old.app"_s)}, {u"new"_s, appURL()}}));
    EXPECT_EQ(answer.typeId(), QMetaType::QString);
    EXPECT_EQ(given(),
              (QStringList{u"--compare"_s, u"--"_s, host.item(u"Old.app"_s), host.item(u"Foo.app"_s), {}}));
}

TEST_F(LooksOnBus, whatTheServiceSaidIsAListInJsonThatNobodyWrites)
{
    EXPECT_EQ(ofDocument(u"Issues"_s), QVariant(u"[]"_s));
    host.document().serviceIssues.set(u"[{\"severity\": \"error\"}]"_s);
    EXPECT_EQ(ofDocument(u"Issues"_s), QVariant(u"[{\"severity\": \"error\"}]"_s));
    EXPECT_EQ(errorOf(setOfDocument(u"Issues"_s, u"[]"_s)), u"org.freedesktop.DBus.Error.PropertyReadOnly"_s);
    EXPECT_EQ(ofDocument(u"Issues"_s), QVariant(u"[{\"severity\": \"error\"}]"_s));
}

TEST_F(LooksOnBus, whatWaitsIsAListThatNobodyWrites)
{
    EXPECT_EQ(ofApplication(u"Waiting"_s).typeId(), QMetaType::QStringList);
    EXPECT_EQ(errorOf(setOfApplication(u"Waiting"_s, QStringList{u"/tmp"_s})),
              u"org.freedesktop.DBus.Error.PropertyReadOnly"_s);
}
