#include "notarization/stapleonlyworkflow.h"

#include "notarization/staplingsteps.h"
#include "platform/itempath.h"
#include "run/workingfoldernames.h"
#include "signing/signingarguments.h"

#include <QHash>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

StepResult openLogBesideItem(Run &run)
{
    run.openLog(run.folder.path(workingfolder::logName), workingfolder::stapleOnlyBanner(run.itemPath()));
    return Done{};
}

/// A cancel is neither offered nor looked for here: what a cancelled run left of one waits for another.
constexpr Step openLog{.name = {}, .work = &openLogBesideItem, .cancelTest = CancelTest::isLeftOut};
constexpr Step assess{
    .name = u"Check code signature", .work = &assessSubmission, .cancelTest = CancelTest::isLeftOut};

Failure notVerified(const QString &logLine)
{
    return {u"Error Verifying Signing"_s, logLine, FolderFate::keepsItsName};
}

} // namespace

QString assessmentType(const QString &item)
{
    static const QHash<QString, QString> types{{u"dmg"_s, u"open"_s},
                                               {u"fmplugin"_s, u"open"_s},
                                               {u"plugin"_s, u"open"_s},
                                               {u"pkg"_s, u"install"_s}};
    return types.value(itempath::lowerExtension(item), u"execute"_s);
}

bool isAccepted(const QString &assessment)
{
    static const QRegularExpression verdict(u"(*ANY)(?m): accepted$"_s);
    return verdict.match(assessment).hasMatch();
}

QString assessmentFailureLine(const SLWTaskResponse &response)
{
    return u"Error %1 in spctl codesign verification: %2"_s.arg(QString::number(response.reference()),
                                                                orNull(response.errorString()));
}

Workflow stapleOnlyWorkflow()
{
    return {openLog, assess, step::staple};
}

StepResult assessSubmission(Run &run)
{
    run.log.logBoldString(u"Checking code signature..."_s);
    const QString &item = run.itemPath();
    const auto response =
        run.tools.runAndLog(signingarguments::spctlTool, signingarguments::spctl(assessmentType(item), item));
    const QString text = response->text();
    if (response->status() != 0)
        return notVerified(assessmentFailureLine(*response));
    if (text.isNull())
        return notVerified(u"Error in spctl: returned 0 but no output received."_s);
    if (!isAccepted(text))
        return Failure{u"Error Verifying Code Signing"_s,
                       u"Code signing could not be verified: %1"_s.arg(text), FolderFate::keepsItsName};
    return Done{};
}

} // namespace sealwright
