#pragma once

#include "document/helpsheets.h"
#include "document/historycommands.h"
#include "document/providersheet.h"
#include "document/requestinfocommands.h"
#include "document/resumecommands.h"
#include "document/signonlycommands.h"
#include "document/stapleonlycommands.h"
#include "document/submitcommands.h"

namespace sealwright {

/// What a person or a script has a document do, by what it is about. Main thread. The document owns them;
/// each refers back to it.
struct DocumentCommands {
    explicit DocumentCommands(MainWinController &document)
        : help(document)
        , submit(document)
        , signOnly(document)
        , stapleOnly(document)
        , resume(document)
        , requestInfo(document)
        , history(document)
        , providers(document)
    {
    }

    HelpSheets help;
    SubmitCommands submit;
    SignOnlyCommands signOnly;
    StapleOnlyCommands stapleOnly;
    ResumeCommands resume;
    RequestInfoCommands requestInfo;
    HistoryCommands history;
    ProviderSheet providers;
};

} // namespace sealwright
