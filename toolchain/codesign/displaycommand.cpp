#include "codesign/displaycommand.h"

#include "codesign/description.h"
#include "codesign/signcommand.h"
#include "formats/codesignature/designation.h"
#include "formats/codesignature/verification.h"
#include "formats/failures.h"
#include "support/console.h"

#include <QDir>

using namespace Qt::StringLiterals;
using namespace toolchain::codesignature;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain::codesign {

namespace {

/// To a file, or to standard output for "-".
Outcome put(const QByteArray &bytes, const QString &destination)
{
    if (destination == u"-"_s || destination == u":-"_s) {
        print({bytes.constData(), std::size_t(bytes.size())});
        return {};
    }
    const QString path = destination.startsWith(u':') ? destination.sliced(1) : destination;
    return writeFileAt(path.toStdString(), bytes);
}

/// A designated requirement that the signature does not hold itself is marked so.
Result<QString> requirementLines(const SignedCode &code)
{
    const QByteArray blob = code.native().requirements();
    const auto set = blob.isEmpty() ? Result<RequirementSet>(RequirementSet()) : readRequirementSet(blob);
    if (!set)
        return set.failure();
    auto lines = requirementSetText(*set);
    if (!lines || set->contains(RequirementType::designated))
        return lines;
    const auto implied = designatedRequirementOf(code);
    const auto text = implied ? requirementText(*implied) : Result<QString>(implied.failure());
    if (!text)
        return text.failure();
    return u"# designated => "_s + *text + u'\n' + *lines;
}

Outcome putRequirements(const SignedCode &code, const QString &destination)
{
    const auto lines = requirementLines(code);
    return lines ? put(lines->toUtf8(), destination) : lines.failure();
}

int displayOne(const QString &path, const Options &options)
{
    const auto code = readCodeSignature(path);
    if (!code)
        return fail(path, code.error());
    std::optional<CmsJudgement> signer;
    if (!code->native().cms().isEmpty())
        signer = judgePart(code->native(), TrustStore::ofThisMachine());
    printError((describe(*code, signer, options.verbosity).join(u'\n') + u'\n').toStdString());
    Outcome done;
    if (options.entitlements && !code->native().entitlements().isEmpty())
        done = put(code->native().entitlements(), *options.entitlements);
    if (done && options.requirements)
        done = putRequirements(*code, *options.requirements);
    return done ? 0 : fail(path, done.error());
}

} // namespace

int runDisplay(const Options &options)
{
    int status = 0;
    for (const QString &path : options.paths)
        status = std::max(status, displayOne(QDir::cleanPath(path), options));
    return status;
}

} // namespace toolchain::codesign
