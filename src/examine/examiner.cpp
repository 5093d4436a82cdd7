#include "examine/examiner.h"

#include "examine/collector.h"
#include "examine/judgement.h"
#include "formats/codesignature/signaturereader.h"
#include "platform/itempath.h"
#include "platform/posix/posixfileservice.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

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

/// The image's own signature stands beside its contents, of which the walk tells.
void addOwnSignature(Examination &examination)
{
    if (examination.kind != ItemKind::diskImage || examination.code.isEmpty())
        return;
    const auto code = toolchain::codesignature::readSignedCode(examination.item);
    if (code)
        examination.code.first().ownSignature =
            toolchain::review::signatureFacts(code->native(), toolchain::TrustStore::ofThisMachine());
}

Result<Examination> begin(const QString &item)
{
    Examination examination;
    examination.item = QDir::cleanPath(QFileInfo(item).absoluteFilePath());
    const auto kind = kindOf(examination.item);
    if (!kind)
        return kind.failure();
    examination.kind = *kind;
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
    Collector collected(*examination, files);
    collect(*examination, collected);
    return examination;
}

Result<Examination> examineItem(const QString &item, const Choices &choices)
{
    auto examination = begin(item);
    if (!examination)
        return examination;
    const platform::PosixFileService files;
    const Prediction prediction = predict(examination->item, examination->kind, choices, files);
    Collector collected(*examination, files);
    collect(*examination, collected);
    Judgement(*examination, prediction, choices, collected).run();
    return examination;
}

} // namespace examine
