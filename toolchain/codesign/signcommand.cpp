#include "codesign/signcommand.h"

#include "codesign/itemsigner.h"
#include "codesign/orderfromoptions.h"
#include "codesign/signer.h"
#include "support/console.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace toolchain::codesign {

namespace {

int signOne(const QString &path, const SigningOrder &order, int verbosity)
{
    const SigningReport report = signItem(path, order);
    if (!report.notice.isEmpty())
        printError((path + u": "_s + report.notice + u'\n').toStdString());
    if (!report.outcome)
        return fail(path, report.outcome.error());
    if (verbosity > 0)
        printError((path + u": "_s + report.done + u'\n').toStdString());
    return 0;
}

} // namespace

int fail(const QString &path, const QString &text)
{
    printError((path + u": "_s + text + u'\n').toStdString());
    return 1;
}

int runSign(const Options &options)
{
    SigningOrder order;
    const OrderProblem problem = fillOrder(order, options);
    if (!problem.isNone())
        return problem.subject.isEmpty() ? refuse(problem.text) : fail(problem.subject, problem.text);
    auto signer = signerFor(*options.identity, options.timestamp);
    if (!signer)
        return fail(*options.identity, signer.error());
    order.signer = *std::move(signer);
    for (const QString &path : options.paths) {
        const int status = signOne(QDir::cleanPath(path), order, options.verbosity);
        if (status != 0)
            return status;
    }
    return 0;
}

int runRemoveSignature(const Options &options)
{
    for (const QString &path : options.paths) {
        const auto removed = removeSignature(QDir::cleanPath(path));
        if (!removed)
            return fail(path, removed.error());
    }
    return 0;
}

} // namespace toolchain::codesign
