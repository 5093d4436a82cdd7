// What a person owns, under random runs of two applications in one folder: items of one name and of one that
// is nearly too long, links in items, kills, trash that fails, and files and links of the person's or of
// another user in the way. The seed is printed; SEALWRIGHT_SEED and SEALWRIGHT_STEPS repeat a walk or make a
// longer one.

#include "state/incarnation.h"
#include "state/randomwalk.h"

#include <QDirIterator>

#include <filesystem>
#include <iostream>

using namespace Qt::StringLiterals;

namespace {

constexpr int usualSeed = 20261122;
constexpr int usualSteps = 2'000;
constexpr int stepsBetweenSearches = 20;
constexpr qsizetype mostDocuments = 4;
constexpr qsizetype mostThings = 60;
constexpr int patience = 100; // milliseconds for workers that wait for one another

// One base, one that is written in two ways, and one that leaves no room for "Unmodified Original".
const QStringList itemNames{u"Foo.app"_s,
                            u"Foo.pkg"_s,
                            u"Foo.dmg"_s,
                            u"Foo.plugin"_s,
                            u"B\u00e4r.app"_s,
                            u"Ba\u0308r.app"_s,
                            QString(240, u'n') + u".app"_s};
const QStringList endings{u"Failed"_s, u"Submitted"_s, u"Notarized"_s, u"Signed"_s};

} // namespace

class RandomFiles : public RandomWalk {
protected:
    RandomFiles()
        : RandomWalk(usualSeed)
    {
        tools.effect = [](const QString &tool, const QStringList &arguments) { leaveTrace(tool, arguments); };
        for (auto &incarnation : incarnations)
            incarnation = launched();
    }
    ~RandomFiles() override
    {
        for (auto &incarnation : incarnations)
            end(*incarnation);
    }

    // The applications

    std::unique_ptr<Incarnation> launched()
    {
        auto incarnation = std::make_unique<Incarnation>(test.item(u"../trash/%1"_s.arg(++m_launches)));
        incarnation->files.failure = [this, one = incarnation.get()](const QString &operation,
                                                                     const QString &path) {
            return failureOf(*one, operation, path);
        };
        incarnation->application = std::make_unique<AppDelegate>(
            test.host({.launcher = &tools, .files = &incarnation->files, .timers = &incarnation->timers}),
            windows, test.configuration);
        incarnation->application->applicationWillFinishLaunching();
        incarnation->application->applicationDidFinishLaunching();
        return incarnation;
    }

    QString failureOf(Incarnation &one, const QString &operation, const QString &path) const
    {
        if (one.operationsToLive == 0)
            return u"killed"_s;
        if (one.operationsToLive > 0)
            --one.operationsToLive;
        if (operation == "trashItem"_L1 && !one.hasTrash)
            return u"no trash"_s;
        const bool isChange = operation != "readFile"_L1 && operation != "isReadable"_L1;
        return isChange && m_othersFolders.forbid(path) ? u"another's"_s : QString();
    }

    /// As if its process were gone.
    void end(Incarnation &incarnation)
    {
        incarnation.operationsToLive = 0;
        tools.releaseAll();
        settle();
        while (!incarnation.application->allControllers().isEmpty())
            incarnation.application->allControllers().last()->window().close();
        // No worker may outlive the application that it works for; what hangs for the other one goes on as
        // well.
        test.runUntil([this] {
            tools.releaseAll();
            return test.workers().isIdle() && test.mainQueue.isEmpty();
        });
        incarnation.timers.forgetAll(); // a wait may have begun since the window was closed
        incarnation.application.reset();
    }

    void killSoon() { someIncarnation().operationsToLive = below(12); }
    void startAgain()
    {
        auto &incarnation = incarnations[below(std::ssize(incarnations))];
        if (incarnation->operationsToLive < 0)
            return;
        end(*incarnation);
        incarnation = launched();
    }
    void loseOrRegainTrash()
    {
        Incarnation &incarnation = someIncarnation();
        incarnation.hasTrash = !incarnation.hasTrash;
    }

    // Chance

    Incarnation &someIncarnation() { return *incarnations[below(std::ssize(incarnations))]; }
    DocumentPtr someDocument()
    {
        const auto &documents = someIncarnation().application->allControllers();
        return documents.isEmpty() ? nullptr : documents.at(below(documents.size()));
    }

    // What the person owns

    QUrl someItem()
    {
        const QString &name = itemNames.at(below(itemNames.size()));
        const QString path = test.item(name);
        if (!QFileInfo::exists(path)) {
            const QByteArray serial = "item " + QByteArray::number(++m_serial);
            if (name.endsWith(".pkg"_L1) || name.endsWith(".dmg"_L1)) {
                items::makeFile(path, serial);
            } else {
                items::makeBundle(path);
                items::makeFile(path + u"/Contents/serial"_s, serial);
                if (happens(30))
                    items::makeLink(path + u"/Contents/Resources/Scripts/main.scpt"_s, fileOutside());
            }
            m_owned.insert(items::fingerprint(path), path + u": "_s + QString::fromLatin1(serial));
        }
        return itempath::toUrl(path);
    }

    /// A result's name, for the person's own things. That of a working folder is the application's, and
    /// whatever had it goes; of what is called "old" only one generation is kept.
    void putSomethingInTheWay()
    {
        const QString base = itempath::withoutExtension(itemNames.at(below(itemNames.size())));
        const QString path = test.item(base + u" - "_s + endings.at(below(endings.size())));
        if (QFileInfo(path).isSymLink() || QFileInfo::exists(path))
            return;
        if (happens(50))
            items::makeLink(path, itempath::folder(fileOutside()));
        else
            items::makeFile(path + u"/Foo - Unmodified Original/mine"_s, "mine");
    }

    /// A file of the person's that is no item, elsewhere.
    QString fileOutside()
    {
        const QString file = test.item(u"../outside/%1/file"_s.arg(++m_serial));
        items::makeFile(file, "outside " + QByteArray::number(m_serial));
        m_owned.insert(items::fingerprint(file), file);
        return file;
    }

    void putSomethingOfAnotherUserInTheWay()
    {
        const QString base = itempath::withoutExtension(itemNames.at(below(itemNames.size())));
        const QString ending = happens(20) ? u"Working"_s : endings.at(below(endings.size()));
        const QString path = test.item(base + u" - "_s + ending);
        if (QFileInfo(path).isSymLink() || QFileInfo::exists(path))
            return;
        items::makeFile(path + u"/file"_s, "another's " + QByteArray::number(++m_serial));
        m_owned.insert(items::fingerprint(path + u"/file"_s), path);
        m_othersFolders.add(path);
    }

    /// A working folder in which a run was killed that had taken the original along.
    void leaveAnOriginalBehind()
    {
        const QString item = itempath::fromUrl(someItem());
        const QString base = itempath::withoutExtension(itempath::lastComponent(item));
        const QString folder = test.item(base + u" - Working"_s);
        if (QFileInfo::exists(folder))
            return;
        const QString keeper = folder + u'/' + base + u" - Unmodified Original"_s;
        if (!makeFolder(keeper))
            return; // its name is too long
        QDir().rename(item, keeper + u'/' + itempath::lastComponent(item));
    }

    static bool makeFolder(const QString &path)
    {
        std::error_code error;
        return std::filesystem::create_directories(path.toStdString(), error);
    }

    void expectAllIsSomewhere()
    {
        QSet<QByteArray> found;
        QDirIterator entries(test.item(u".."_s),
                             QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QString path = entries.next();
            const bool isItem = itemNames.contains(entries.fileName()) || entries.fileName() == "file"_L1;
            if (isItem && !entries.fileInfo().isSymLink())
                found.insert(items::fingerprint(path));
        }
        for (auto owned = m_owned.cbegin(); owned != m_owned.cend(); ++owned)
            EXPECT_TRUE(found.contains(owned.key())) << owned.value().toStdString();
    }

    /// So that a long walk searches no more than a short one.
    void beginAnew()
    {
        for (auto &incarnation : incarnations)
            end(*incarnation);
        for (const QString &folder : {u"../trash"_s, u"../outside"_s, u""_s})
            QDir(test.item(folder)).removeRecursively();
        items::makeFolder(test.item({}));
        m_owned.clear();
        m_othersFolders.forgetAll();
        for (auto &incarnation : incarnations)
            incarnation = launched();
    }

    bool hasManyThings() const { return m_owned.size() > mostThings; }

    // Runs

    void scriptCommands()
    {
        static constexpr void (NSApplicationScripting::*commands[])(const ScriptCommandPtr &) = {
            &NSApplicationScripting::AESubmitForNotarizing, &NSApplicationScripting::AESubmitForNotarizing,
            &NSApplicationScripting::AESignOnly, &NSApplicationScripting::AEStapleOnly};
        Incarnation &incarnation = someIncarnation();
        if (incarnation.application->allControllers().size() >= mostDocuments)
            return closeSome(incarnation);
        const QVariantMap arguments{{argument::at, someItem()}, {argument::skippingStapling, happens(20)}};
        const auto command = std::make_shared<ScriptCommand>(arguments, [](const ScriptReply &) {});
        command->execute([&](const ScriptCommandPtr &executing) {
            (incarnation.application->scripting().*commands[below(std::size(commands))])(executing);
        });
    }

    static void closeSome(const Incarnation &incarnation)
    {
        for (const DocumentPtr &document : QList(incarnation.application->allControllers())) {
            if (!document->isBusy())
                document->window().performClose();
        }
    }

    void cancels()
    {
        const DocumentPtr document = someDocument();
        if (document && document->canCancel())
            document->doCancel();
    }

    void personRepeats()
    {
        const DocumentPtr document = someDocument();
        if (!document || document->isBusy() || TestHost::window(*document).sheet)
            return;
        if (document->lastAction() == submitAction)
            document->perform(Action::doSubmitAgain);
        else if (document->lastAction() == signAction)
            document->perform(Action::doSignAgain);
    }

    void personAnswers()
    {
        const DocumentPtr document = someDocument();
        if (document && TestHost::window(*document).sheet)
            TestHost::window(*document).answerSheet();
    }

    void timerFires() { someIncarnation().timers.fireNext(); }

    void toolMisbehaves()
    {
        static const QStringList names{u"altool--notarize-app"_s,
                                       u"altool--notarization-info"_s,
                                       u"codesign"_s,
                                       u"ditto"_s,
                                       u"stapler"_s,
                                       u"hdiutil"_s,
                                       u"productsign"_s};
        const QList<InstantTools::Answer> answers{{.status = 1, .error = "trouble"},
                                                  {.hangs = true},
                                                  {.output = FakeTools::infoReport(u"invalid"_s)},
                                                  {.output = FakeTools::infoReport(u"in progress"_s)}};
        tools.answerNext(names.at(below(names.size())), answers.at(below(answers.size())));
    }

    void toolsGoOn() { tools.releaseAll(); }

    void takeStep()
    {
        static constexpr void (RandomFiles::*kinds[])() = {&RandomFiles::scriptCommands,
                                                           &RandomFiles::scriptCommands,
                                                           &RandomFiles::scriptCommands,
                                                           &RandomFiles::timerFires,
                                                           &RandomFiles::timerFires,
                                                           &RandomFiles::toolMisbehaves,
                                                           &RandomFiles::toolsGoOn,
                                                           &RandomFiles::cancels,
                                                           &RandomFiles::personRepeats,
                                                           &RandomFiles::personAnswers,
                                                           &RandomFiles::killSoon,
                                                           &RandomFiles::startAgain,
                                                           &RandomFiles::loseOrRegainTrash,
                                                           &RandomFiles::putSomethingInTheWay,
                                                           &RandomFiles::putSomethingOfAnotherUserInTheWay,
                                                           &RandomFiles::leaveAnOriginalBehind};
        (this->*kinds[below(std::size(kinds))])();
    }

    void settle()
    {
        QElapsedTimer waited;
        waited.start();
        test.runUntil([&] {
            if (waited.elapsed() > patience)
                tools.releaseAll(); // one hangs and another waits for its runner
            return test.workers().running() == tools.hanging() && test.mainQueue.isEmpty();
        });
    }

    InstantTools tools;
    FakeWindowFactory windows{test.applicationHost};

private:
    OthersFolders m_othersFolders;

protected:
    std::unique_ptr<Incarnation> incarnations[2];

private:
    QHash<QByteArray, QString> m_owned; // by their fingerprints
    int m_serial = 0;
    int m_launches = 0;
};

TEST_F(RandomFiles, loseNothingThatAPersonHad)
{
    const int steps = numberFrom("SEALWRIGHT_STEPS", usualSteps);
    std::cout << "Seed " << numberFrom("SEALWRIGHT_SEED", usualSeed) << ", " << steps << " steps\n";
    for (int step = 0; step < steps && !HasFailure(); ++step) {
        SCOPED_TRACE("step " + std::to_string(step));
        takeStep();
        if (happens(60))
            settle();
        if (step % stepsBetweenSearches == 0) {
            settle();
            expectAllIsSomewhere();
            if (hasManyThings())
                beginAnew();
        }
    }
    settle();
    expectAllIsSomewhere();
}
