#include "document/requestinfocommands.h"

#include "document/mainwincontroller.h"
#include "notarization/requestinfo.h"
#include "platform/applicationhost.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/pasteboard.h"

using namespace Qt::StringLiterals;

namespace sealwright {

void RequestInfoCommands::doInfoForUUIDInFile()
{
    document.askForItem(
        {.message = u"Choose the RequestUUID.txt file"_s,
         .allowedFileTypes = {u"txt"_s},
         .canChooseFiles = true,
         .canChooseDirectories = false,
         .shouldEnable = &MainWinController::shouldEnableURL},
        [this](const QUrl &chosen) { lookUpRequestInFile(itempath::fromUrl(chosen)); },
        [this] { document.endBeforeStart(); });
}

void RequestInfoCommands::lookUpRequestInFile(const QString &path)
{
    document.changeStatus(status::fetching);
    const auto bytes = document.host().files.readFile(path);
    const auto text = bytes ? decodedUtf8(*bytes) : std::nullopt;
    if (text)
        return infoForRequestUUID(text->trimmed());
    document.host().application.beep();
    document.endBeforeStart();
}

void RequestInfoCommands::doInfoForUUIDOfLastUpload()
{
    infoForRequestUUID(std::nullopt);
}

void RequestInfoCommands::doInfoForUUIDOnClipboard()
{
    const QString text = document.host().pasteboard.firstString();
    if (!isRequestUUID(text))
        return document.host().application.beep();
    infoForRequestUUID(text);
}

void RequestInfoCommands::infoForRequestUUID(const std::optional<QString> &requestUUID)
{
    auto inputs = beginQuery(u"Interface is blocked."_s);
    if (!inputs)
        return;
    inputs->requestUUID = requestUUID;
    document.startRun(*inputs, requestInfoWorkflow(), [this](Run &) { finishQuery({}); });
}

} // namespace sealwright
