#include "codesign/verifycommand.h"

#include "codesign/orderfromoptions.h"
#include "codesign/signcommand.h"
#include "formats/codesignature/verification.h"
#include "support/console.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;
using namespace toolchain::codesignature;

namespace toolchain::codesign {

namespace {

constexpr int unmetStatus = 3;
constexpr int verbosityOfNested = 2;

void say(const QString &line)
{
    printError((line + u'\n').toStdString());
}

/// A framework is verified by its current version.
QString nestedPlace(const QString &path)
{
    return QFileInfo(path + u"/Versions/Current"_s).isDir() ? path + u"/Versions/Current/."_s : path;
}

void reportProblem(const QString &path, const CodeProblem &problem, int verbosity)
{
    say(path + u": "_s + problem.text);
    if (!problem.subcomponent.isEmpty())
        say(u"In subcomponent: "_s + problem.subcomponent);
    if (!problem.architecture.isEmpty())
        say(u"In architecture: "_s + problem.architecture);
    if (verbosity == 0)
        return;
    for (const QString &file : problem.files)
        say(file);
    if (!problem.detail.isEmpty())
        say(u"In detail: "_s + problem.detail);
}

int reportRequirements(const QString &path, const Verification &verification, const Options &options)
{
    if (options.verbosity > 0)
        say(path + u": valid on disk"_s);
    const bool isOfThisMachine =
        verification.signer && verification.signer->trust.anchor == Anchor::thisMachine;
    if (options.verbosity > 0 && isOfThisMachine)
        say(path + u": signed by the authority of this machine, which no Mac knows"_s);
    if (!verification.meetsDesignatedRequirement)
        say(path + u": does not satisfy its designated Requirement"_s);
    else if (options.verbosity > 0)
        say(path + u": satisfies its Designated Requirement"_s);
    if (!verification.meetsRequirement)
        say(u"test-requirement: "_s + text::requirementFailed);
    else if (options.testRequirement && options.verbosity > 0)
        say(path + u": explicit requirement satisfied"_s);
    return verification.meetsDesignatedRequirement && verification.meetsRequirement ? 0 : unmetStatus;
}

int verifyOne(const QString &path, const VerificationOrder &order, const Options &options)
{
    const Verification verification = verifyCode(path, order);
    if (verification.problem.isNone())
        return reportRequirements(path, verification, options);
    reportProblem(path, verification.problem, options.verbosity);
    return 1;
}

/// A failure counts for more than a requirement that is not met.
int worse(int one, int other)
{
    return one == 1 || other == 1 ? 1 : std::max(one, other);
}

} // namespace

int runVerify(const Options &options)
{
    VerificationOrder order;
    order.strictness = options.isStrict ? Strictness::strict : Strictness::usual;
    if (options.testRequirement) {
        const auto requirement = requirementFrom(*options.testRequirement);
        if (!requirement)
            return refuse(requirement.error());
        order.requirement = *requirement;
    }
    if (options.isDeep && options.verbosity >= verbosityOfNested) {
        order.prepared = [](const QString &path) { say(u"--prepared:"_s + nestedPlace(path)); };
        order.validated = [](const QString &path) { say(u"--validated:"_s + nestedPlace(path)); };
    }
    int status = 0;
    for (const QString &path : options.paths)
        status = worse(status, verifyOne(path, order, options));
    return status;
}

} // namespace toolchain::codesign
