#pragma once

#include "document/helpsheets.h"
#include "notarization/archivesteps.h"
#include "notarization/credentialcheck.h"
#include "notarization/history.h"
#include "notarization/pollingsteps.h"
#include "notarization/providernames.h"
#include "notarization/requestinfo.h"
#include "notarization/stapleonlyworkflow.h"
#include "notarization/staplingsteps.h"
#include "notarization/submitworkflow.h"
#include "notarization/uploadstep.h"
#include "scripting/MainWinController+Scripting.h"
#include "scripting/NSWindow+Scripting.h"
#include "signing/bundlescanner.h"
#include "signing/entitlements.h"
#include "signing/packagesteps.h"
#include "signing/signingsteps.h"
#include "signing/signonlyworkflow.h"

/// The workflows of one document, by what they are about. The document owns them; each refers back to it.
struct DocumentExtensions {
    explicit DocumentExtensions(MainWinController &document)
        : help(document)
        , scanner(document)
        , entitlements(document)
        , signing(document)
        , packages(document)
        , signOnly(document)
        , submit(document)
        , credentials(document)
        , archive(document)
        , upload(document)
        , polling(document)
        , stapling(document)
        , stapleOnly(document)
        , requestInfo(document)
        , history(document)
        , providers(document)
        , scripting(document)
        , windowScripting(document)
    {
    }

    HelpSheets help;
    BundleScanner scanner;
    Entitlements entitlements;
    SigningSteps signing;
    PackageSteps packages;
    SignOnlyWorkflow signOnly;
    SubmitWorkflow submit;
    CredentialCheck credentials;
    ArchiveSteps archive;
    UploadStep upload;
    PollingSteps polling;
    StaplingSteps stapling;
    StapleOnlyWorkflow stapleOnly;
    RequestInfo requestInfo;
    History history;
    ProviderNames providers;
    MainWinControllerScripting scripting;
    NSWindowScripting windowScripting;
};
