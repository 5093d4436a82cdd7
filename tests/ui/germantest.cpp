// The windows in German: nothing is missing, and scripts and logs go on in English.

#include "ui/shown.h"

#include "document/credentialfields.h"
#include "document/entitlementswitches.h"
#include "germanwindows.h"
#include "notarization/pollingsteps.h"
#include "ui/itempanel.h"
#include "ui/statuspill.h"
#include "windowtest.h"

#include <QAction>
#include <QDirIterator>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace {

const QString sources = QStringLiteral(SOURCES);
const QString tsFile = sources + u"/resources/translations/sealwright_de.ts"_s;

struct Message {
    QString source;
    QString german;
    bool isFinished = false;
};

QList<Message> messagesIn(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    QXmlStreamReader reader(&file);
    QList<Message> messages;
    while (!reader.atEnd()) {
        reader.readNext();
        if (!reader.isStartElement())
            continue;
        if (reader.name() == "message"_L1)
            messages.append(Message{});
        else if (reader.name() == "source"_L1)
            messages.last().source = reader.readElementText();
        else if (reader.name() == "translation"_L1) {
            messages.last().isFinished = !reader.attributes().hasAttribute("type"_L1);
            messages.last().german = reader.readElementText(QXmlStreamReader::IncludeChildElements);
        }
    }
    EXPECT_FALSE(reader.hasError());
    return messages;
}

QStringList placesIn(const QString &text)
{
    static const QRegularExpression place(u"%\\d"_s);
    QStringList places;
    for (auto match = place.globalMatch(text); match.hasNext();)
        places.append(match.next().captured());
    places.sort();
    return places;
}

class GermanWindow : protected German, public WindowTest { };

} // namespace

TEST(GermanTexts, areThereForEachTextOfTheSources)
{
    const QTemporaryDir folder;
    const QString copy = folder.filePath(u"sealwright_de.ts"_s);
    ASSERT_TRUE(QFile::copy(tsFile, copy));
    QProcess update;
    update.start(QStringLiteral(LUPDATE),
                 {sources + u"/src"_s, u"-I"_s, sources + u"/src"_s, u"-silent"_s, u"-locations"_s, u"none"_s,
                  u"-no-obsolete"_s, u"-ts"_s, copy});
    ASSERT_TRUE(update.waitForFinished(-1));
    ASSERT_EQ(update.exitCode(), 0) << update.readAllStandardError().constData();
    const QList<Message> messages = messagesIn(copy);
    EXPECT_GT(messages.size(), 400);
    for (const Message &message : messages)
        EXPECT_TRUE(message.isFinished && !message.german.isEmpty()) << message.source.toStdString();
}

TEST(GermanTexts, takeWhatIsPutInAndHaveALetterWhereTheEnglishDoes)
{
    for (const Message &message : messagesIn(tsFile)) {
        EXPECT_EQ(placesIn(message.german), placesIn(message.source)) << message.source.toStdString();
        EXPECT_EQ(message.german.count(u'&'), message.source.count(u'&')) << message.source.toStdString();
    }
}

TEST(GermanTexts, ofTheCoreAreThoseThatTheCoreHas)
{
    QString core;
    QDirIterator files(sources + u"/src"_s, {u"*.cpp"_s, u"*.h"_s}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (file.fileName().contains(u"/src/ui/"_s) || !file.open(QIODevice::ReadOnly))
            continue;
        core += QString::fromUtf8(file.readAll());
    }
    for (QString text : coreTexts()) {
        text.replace(u'\n', u"\\n"_s).replace(u'"', u"\\\""_s);
        EXPECT_TRUE(core.contains(u"u\""_s + text + u'"')) << text.toStdString();
    }
}

TEST(GermanTexts, ofTheCoreHaveTheNameOfEachStepAndEntitlement)
{
    const QRegularExpression row(u"Step \\w+\\{\\s*\\.name = u\"([^\"]+)\""_s);
    QStringList names;
    QDirIterator files(sources + u"/src"_s, {u"*.cpp"_s, u"*.h"_s}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        for (const auto &found : row.globalMatch(QString::fromUtf8(file.readAll())))
            names.append(found.captured(1));
    }
    EXPECT_GT(names.size(), 10);
    for (const EntitlementSwitch &entitlement : entitlementSwitches())
        names.append(entitlement.label);
    for (const QString &name : std::as_const(names))
        EXPECT_TRUE(coreTexts().contains(name)) << name.toStdString();
}

TEST_F(GermanWindow, hasGermanMenusWithALetterOfItsOwnForEachItem)
{
    auto &menus = *widget().findChild<QMenuBar *>();
    EXPECT_EQ(menus.actions().first()->text(), u"&Datei"_s);
    QList<QList<QAction *>> groups{menus.actions()};
    for (const QAction *const top : menus.actions())
        groups.append(top->menu()->actions());
    for (const QList<QAction *> &group : groups) {
        QString letters;
        for (const QAction *const action : group) {
            const qsizetype mark = action->text().indexOf(u'&');
            const QChar letter = mark < 0 ? QChar() : action->text().at(mark + 1).toLower();
            EXPECT_FALSE(!letter.isNull() && letters.contains(letter)) << action->text().toStdString();
            letters += letter;
        }
    }
}

TEST_F(GermanWindow, showsAlertsAndStatesInGermanAndLogsAndReportsThemInEnglish)
{
    EXPECT_EQ(part<QPushButton>(u"submitAppButton"_s).text(), u"Einreichen …"_s);
    EXPECT_EQ(document().submitAppButton.title(), u"Submit…"_s);
    EXPECT_EQ(document().statusString(), u"ready"_s);
    document().appleIDField.setStringValue(u""_s);
    EXPECT_FALSE(checkCredentialFields(document()));
    EXPECT_EQ(awaitSheet().text(), u"Apple-ID fehlt"_s);
    EXPECT_EQ(awaitSheet().informativeText(), u"Sie müssen Ihre Apple-ID eingeben."_s);
    EXPECT_EQ(host.log(LogStyle::error).last(), u"You need to enter your Apple ID."_s);
    answer(u"OK"_s);
}

TEST_F(GermanWindow, putsNamesIntoGermanSentences)
{
    EXPECT_EQ(shown(u"The file 'Foo %2 & Bar.app' is now ready for distribution."_s),
              u"Die Datei „Foo %2 & Bar.app“ kann jetzt verteilt werden."_s);
    EXPECT_EQ(shown(u"what a tool says"_s), u"what a tool says"_s);
}

TEST_F(GermanWindow, helpsInGermanAlsoWhereATextIsPutTogether)
{
    document().perform(Action::doAppPassHelp);
    const QString text = awaitSheet().informativeText();
    EXPECT_TRUE(text.startsWith(u"Zum Beglaubigen dient"_s)) << text.toStdString();
    EXPECT_TRUE(text.contains(u"<https://appleid.apple.com/account/manage>"_s));
    answer(u"OK"_s);
    document().extraEntitlementsURL.set(QUrl::fromLocalFile(u"/some/extra.plist"_s));
    document().perform(Action::doExtraEntitlementsHelp);
    const QString help = awaitSheet().informativeText();
    EXPECT_TRUE(help.endsWith(u"\n\nDie Datei mit weiteren Berechtigungen ist „/some/extra.plist“."_s))
        << help.toStdString();
    EXPECT_FALSE(help.contains(u"If you need"_s));
    answer(u"OK"_s);
}

TEST_F(GermanWindow, saysInGermanWhatEndedARunAndWhatToDo)
{
    const QString english =
        u"The app has been uploaded, but notarizing has not been confirmed. Once you get a confirmation email on your Apple ID email account, you can staple the app using the Staple Only button."_s;
    document().stepList.plan({step::awaitResult});
    document().stepList.begin(step::awaitResult);
    document().stepList.finish(StepState::cancelled);
    document().cancelPressed.set(true);
    window().beginSheet({u"Process Cancelled"_s, english, {}}, [](int) {});
    const QString sentence = part<QLabel>(u"outcomeSentence"_s).text();
    EXPECT_TRUE(sentence.startsWith(u"Die App wurde hochgeladen"_s)) << sentence.toStdString();
    EXPECT_TRUE(sentence.contains(u"in einem neuen Dokument"_s)) << sentence.toStdString();
    answer(u"OK"_s);
}

TEST_F(GermanWindow, hasRoomForEachStatusWord)
{
    auto &pill = part<QLabel>(u"statusString"_s);
    for (const QString &word :
         {u"ready"_s, u"interacting"_s, u"submitting"_s, u"waiting"_s, u"stapling"_s, u"fetching"_s})
        EXPECT_LT(pill.fontMetrics().horizontalAdvance(StatusPill::wording(word)), pill.width())
            << word.toStdString();
}

TEST_F(GermanWindow, saysThatItIsThePersonsTurn)
{
    document().perform(Action::doAppPassHelp);
    EXPECT_EQ(document().statusString(), u"interacting"_s) << "which scripts read";
    until([this] { return part<QLabel>(u"statusString"_s).accessibleName() == "Sie sind dran"_L1; });
    EXPECT_EQ(StatusPill::wording(u"waiting"_s), shown(u"waiting"_s));
    answer(u"OK"_s);
}

TEST(StatusWord, ofAnOpenSheetIsWordedForPeople)
{
    EXPECT_EQ(StatusPill::wording(u"interacting"_s), u"your turn"_s);
    EXPECT_EQ(StatusPill::wording(u"submitting"_s), u"submitting"_s);
}

TEST(ShownText, isTheCoresOwnInEnglish)
{
    for (const QString &text : coreTexts())
        EXPECT_EQ(shown(text), text);
}

TEST_F(GermanWindow, asksForAnItemInGerman)
{
    document().perform(Action::doSubmit);
    until([this] { return page().findChild<ItemPanel *>(); });
    EXPECT_EQ(part<QLabel>(u"lookInLabel"_s).text(), u"Suchen in:"_s);
    page().findChild<ItemPanel *>()->reject();
    until([this] { return !window().hasSheet(); });
}
