#include "examine/examiner.h"

#include "examine/collector.h"
#include "examine/judgement.h"
#include "examine/rules.h"
#include "formats/codesignature/signaturereader.h"
#include "formats/package/packagejudgement.h"
#include "formats/review/signer.h"
#include "platform/itempath.h"
#include "platform/posix/posixfileservice.h"

#include <QDir>
#include <QFileInfo>

#include <future>

using namespace Qt::StringLiterals;

namespace sealwright {

using platform::Error;
using platform::Result;
using toolchain::review::SignatureFacts;
using toolchain::review::SignatureState;

namespace examine {

namespace {

Result<ItemKind> kindOf(const QString &item)
{
    const QFileInfo info(item);
    if (!info.exists())
        return Error{u"\"%1\" does not exist."_s.arg(item)};
    const QString extension = itempath::lowerExtension(item);
    static const QHash<QString, ItemKind> bundles{
        {u"app"_s, ItemKind::app}, {u"plugin"_s, ItemKind::plugin}, {u"fmplugin"_s, ItemKind::fmplugin}};
    if (info.isDir())
        return bundles.value(extension, ItemKind::folder);
    if (info.isFile() && extension == "pkg"_L1)
        return ItemKind::package;
    if (info.isFile() && extension == "dmg"_L1)
        return ItemKind::diskImage;
    return Error{u"\"%1\" is neither an app, a plug-in, a package, a disk image nor a folder."_s.arg(item)};
}

/// The signature of an image or a package stands beside its contents, of which the walk tells.
std::optional<SignatureFacts> ownSignature(const Examination &examination)
{
    const auto store = toolchain::TrustStore::ofThisMachine();
    if (examination.kind == ItemKind::diskImage) {
        const auto code = toolchain::codesignature::readSignedCode(examination.item);
        return code ? std::optional(toolchain::review::signatureFacts(code->native(), store)) : std::nullopt;
    }
    const auto archive = toolchain::xar::Archive::open(examination.item);
    if (!archive)
        return {};
    const auto judgement = toolchain::package::judgePackage(*archive);
    SignatureFacts signature;
    if (judgement.verdict == toolchain::package::PackageJudgement::Verdict::notSigned)
        return signature;
    signature.state = SignatureState::certified;
    signature.authorities = toolchain::review::commonNames(judgement.trust.chain);
    signature.timestamp = judgement.timestamp.value_or(QDateTime());
    return signature;
}

void tellOfNoArchive(Examination &examination)
{
    examination.unread.append(u"."_s);
    examination.findings.append({rule::damagedCode,
                                 Severity::error,
                                 u"."_s,
                                 {},
                                 u"The archive cannot be read: it is no disk image and no package."_s,
                                 rule::advice(rule::damagedCode)});
}

void addOwnSignature(Examination &examination)
{
    const bool isFile = examination.kind == ItemKind::diskImage || examination.kind == ItemKind::package;
    if (!isFile)
        return;
    if (!examination.code.isEmpty() && examination.code.first().path == "."_L1)
        examination.code.first().ownSignature = ownSignature(examination);
    else if (examination.findings.isEmpty()) // by its contents it is no archive at all
        tellOfNoArchive(examination);
}

Result<Examination> begin(const QString &item)
{
    Examination examination;
    examination.item = QDir::cleanPath(QFileInfo(item).absoluteFilePath());
    const auto kind = kindOf(examination.item);
    if (!kind)
        return kind.failure();
    examination.kind = *kind;
    if (QFileInfo(examination.item).isSymLink()) // a run works on what it leads to
        examination.item = QFileInfo(examination.item).canonicalFilePath();
    if (!QFileInfo(examination.item).isReadable())
        return Error{u"\"%1\" cannot be read."_s.arg(examination.item)};
    return examination;
}

void collect(Examination &examination, Collector &collected)
{
    toolchain::review::UnpackBudget budget;
    toolchain::review::walkContents(examination.item, budget, collected);
    addOwnSignature(examination);
}

} // namespace

Result<Examination> collectItem(const QString &item)
{
    auto examination = begin(item);
    if (!examination)
        return examination;
    const platform::PosixFileService files;
    Collector collected(*examination, files, Collector::Sizes::counted);
    collect(*examination, collected);
    return examination;
}

Result<Examination> examineItem(const QString &item, const Choices &choices)
{
    auto examination = begin(item);
    if (!examination)
        return examination;
    const platform::PosixFileService files;
    // What a run would do is found out beside what there is: neither needs the other.
    auto foretold = std::async(std::launch::async,
                               [item = examination->item, kind = examination->kind, &choices, &files] {
                                   return predict(item, kind, choices, files);
                               });
    Collector collected(*examination, files,
                        choices.countsSize ? Collector::Sizes::counted : Collector::Sizes::leftOut);
    collect(*examination, collected);
    if (choices.countsSize)
        examination->product = productOf(examination->item, examination->kind);
    const Prediction prediction = foretold.get();
    Judgement(*examination, prediction, choices, collected).run();
    return examination;
}

} // namespace examine

} // namespace sealwright
