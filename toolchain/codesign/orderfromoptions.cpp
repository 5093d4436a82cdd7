#include "codesign/orderfromoptions.h"

#include "formats/codesignature/entitlementsder.h"

#include <QFile>

using namespace Qt::StringLiterals;
using namespace toolchain::codesignature;
using platform::Error;
using platform::Result;

namespace toolchain::codesign {

namespace {

constexpr qint64 longestFile = 16 << 20;

Result<QByteArray> contentOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Error{file.errorString()};
    const QByteArray content = file.read(longestFile + 1);
    return content.size() > longestFile ? Result<QByteArray>(Error{u"is too large"_s}) : content;
}

OrderProblem takeDigests(SigningOrder &order, const QString &names)
{
    for (const QString &name : names.split(u',')) {
        const HashType type = hashTypeNamed(name);
        if (type != HashType::sha1 && type != HashType::sha256 && type != HashType::sha384)
            return {{}, u"unknown digest algorithm \"%1\"; sha1, sha256 and sha384 are known"_s.arg(name)};
        if (!order.digests.contains(type))
            order.digests.append(type);
    }
    std::sort(order.digests.begin(), order.digests.end());
    return {};
}

OrderProblem takeKept(SigningOrder &order, const QString &names)
{
    static const QMap<QString, Kept> words{{u"identifier"_s, Kept::identifier},
                                           {u"entitlements"_s, Kept::entitlements},
                                           {u"requirements"_s, Kept::requirements},
                                           {u"flags"_s, Kept::flags},
                                           {u"runtime"_s, Kept::runtime}};
    const QStringList list = names.isEmpty() ? QStringList(words.keys()) : names.split(u',');
    for (const QString &name : list) {
        if (!words.contains(name))
            return {{}, u"unknown metadata \"%1\" of --preserve-metadata"_s.arg(name)};
        order.kept.insert(words.value(name));
    }
    return {};
}

OrderProblem takeFlags(SigningOrder &order, const QString &words)
{
    const auto flags = codeFlagsNamed(words);
    if (!flags)
        return {{}, flags.error()};
    order.flags = *flags;
    return {};
}

OrderProblem takeSignatureSize(SigningOrder &order, const QString &text)
{
    constexpr quint64 largest = 16 << 20;
    bool isNumber = false;
    order.cmsRoom = text.toULongLong(&isNumber, 0);
    const bool isUsable = isNumber && order.cmsRoom > 0 && order.cmsRoom <= largest;
    return isUsable ? OrderProblem() : OrderProblem{{}, u"invalid signature size \"%1\""_s.arg(text)};
}

/// The file's bytes become a part of the signature as they are; a blob's header is taken off.
OrderProblem takeEntitlements(SigningOrder &order, const QString &path)
{
    const auto file = contentOf(path);
    if (!file)
        return {path, u"cannot read entitlement data: "_s + file.error()};
    const auto blob = blobIn(*file, magic::entitlements);
    const QByteArray list = blob ? blobContent(*blob).toByteArray() : *file;
    const auto entitlements = readEntitlements(list);
    if (!entitlements)
        return {path, u"unrecognized entitlement data: "_s + entitlements.error()};
    if (list.startsWith("bplist"))
        return {path, u"unrecognized entitlement data: a binary property list"_s};
    const auto der = entitlementsAsDer(*entitlements);
    if (!der)
        return {path, u"unrecognized entitlement data: "_s + der.error()};
    order.entitlements = list;
    return {};
}

OrderProblem takeRequirements(SigningOrder &order, const QString &argument)
{
    const auto source = requirementSource(argument);
    if (!source)
        return {{}, source.error()};
    const bool isBlob = source->startsWith("\xfa\xde\x0c");
    const auto set = isBlob ? readRequirementSet(*source) : compileRequirementSet(QString::fromUtf8(*source));
    if (!set)
        return {argument, u"invalid requirements: "_s + set.error()};
    order.requirements = *set;
    return {};
}

} // namespace

Result<QByteArray> requirementSource(const QString &argument)
{
    if (argument.startsWith(u'='))
        return argument.sliced(1).toUtf8();
    const auto content = contentOf(argument);
    return content ? content : Error{argument + u": "_s + content.error()};
}

Result<QByteArray> requirementFrom(const QString &argument)
{
    const auto source = requirementSource(argument);
    if (!source || source->startsWith("\xfa\xde\x0c"))
        return source;
    auto requirement = compileRequirement(QString::fromUtf8(*source));
    return requirement ? requirement : Error{argument + u": invalid requirement: "_s + requirement.error()};
}

OrderProblem fillOrder(SigningOrder &order, const Options &options)
{
    order.oldSignature = options.forces ? OldSignature::isReplaced : OldSignature::isRefused;
    order.nested = options.isDeep ? NestedCode::isSignedToo : NestedCode::mustBeSigned;
    order.identifier = options.identifier.value_or(QString());
    order.prefix = options.prefix.value_or(QString());
    const std::array<
        std::pair<const std::optional<QString> *, OrderProblem (*)(SigningOrder &, const QString &)>, 6>
        steps{{{&options.flags, takeFlags},
               {&options.digests, takeDigests},
               {&options.preserved, takeKept},
               {&options.signatureSize, takeSignatureSize},
               {&options.entitlements, takeEntitlements},
               {&options.requirements, takeRequirements}}};
    for (const auto &[value, step] : steps) {
        OrderProblem problem = *value ? step(order, **value) : OrderProblem();
        if (!problem.isNone())
            return problem;
    }
    return {};
}

} // namespace toolchain::codesign
