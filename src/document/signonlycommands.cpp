#include "document/signonlycommands.h"

#include "document/mainwincontroller.h"
#include "run/workingfoldernames.h"

using namespace Qt::StringLiterals;

namespace sealwright {

// Commands and entries

void SignOnlyCommands::doSignOnly()
{
    signByPerson({});
}

void SignOnlyCommands::doSignAgain()
{
    if (!recoverOriginal(workingfolder::codeSigned))
        return reportFileNotFound(original().path());
    signByPerson(document.originalAppletURL());
}

void SignOnlyCommands::signByPerson(const QUrl &url)
{
    setStartedByPerson();
    signOnlyURL(url);
}

void SignOnlyCommands::scriptedSignOnly(const QUrl &url)
{
    document.isScripted.set(true);
    signOnlyURL(url);
}

void SignOnlyCommands::signOnlyURL(const QUrl &url)
{
    const Item item = Item::fromUrl(url);
    if (!item.isNone())
        setOriginal(item, signAction);
    if (!beginSubmitting())
        return;
    const QString identity = document.identitiesPopup.titleOfSelectedItem();
    if (!checkIdentity(identity))
        return;
    if (item.isNone())
        chooseItem(identity);
    else
        startWithOriginal(identity);
}

void SignOnlyCommands::chooseItem(const QString &identity)
{
    document.askForItem(
        {.message = u"Choose an app or a directory to copy and sign with the hardened runtime"_s,
         .allowedFileTypes = {u"app"_s},
         .canChooseFiles = true,
         .canChooseDirectories = true,
         .shouldEnable = &MainWinController::shouldEnableURL},
        [this, identity](const QUrl &chosen) {
            document.changeStatus(status::submitting);
            setOriginal(Item::fromUrl(chosen), signAction);
            startWithOriginal(identity);
        },
        [this] { document.endBeforeStart(); });
}

void SignOnlyCommands::startWithOriginal(const QString &identity)
{
    const Workflow workflow = signOnlyWorkflow(Item(document.originalFileName()), stepOptions());
    showItem(document.originalFileName());
    document.stepList.plan(planOf(workflow));
    document.canCancel.set(true);
    if (const auto inputs = signingInputs(identity))
        document.startRun(*inputs, workflow, [this](Run &) { document.endSigning(); });
}

} // namespace sealwright
