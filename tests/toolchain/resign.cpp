// Takes the signature off a Mach-O file and makes it anew from its own parameters, the CMS signature taken
// over, for script/verify: usage: resign FILE COPY. The copy is the file again where everything is written as
// its signer has.

#include "formats/codesignature/machosigner.h"
#include "formats/codesignature/signaturereader.h"

#include <QFile>

#include <cstdio>

using namespace toolchain::codesignature;

namespace {

/// Older tools round __LINKEDIT's size in memory up to pages of another size.
quint64 segmentAlignment(const MachOSlice &slice)
{
    constexpr quint64 usual = 0x4000;
    constexpr quint64 older = 0x1000;
    return slice.segment("__LINKEDIT")->virtualSize % usual == 0 ? usual : older;
}

/// Of what lies in files beside the code, which the directories have the digests of alone.
void addDigestedFiles(SignaturePlan &plan, const SignedPart &part)
{
    for (const quint32 number : {slot::infoPropertyList, slot::resources}) {
        for (const CodeDirectory &directory : part.directories) {
            if (directory.hasSpecialSlot(number))
                plan.digestedFiles[number].append(directory.specialSlot(number).toByteArray());
        }
    }
}

/// A signer may have set more aside than codesign does, or less.
void keepRoom(SignaturePlan &plan, const MachOSlice &slice)
{
    const quint64 room = roomForSignature(plan, slice.signature->data.offset);
    plan.cmsRoom += slice.signature->data.length - room;
}

SignaturePlan planAfter(const SignedCode &code, qsizetype index)
{
    const SignedPart &part = code.parts[index];
    SignaturePlan plan;
    plan.fields = part.primary().fields();
    plan.segmentAlignment = segmentAlignment(code.image->slices[index]);
    for (const CodeDirectory &directory : part.directories)
        plan.digests.append(directory.fields().hashType);
    for (const quint32 number : {slot::requirements, slot::entitlements, slot::entitlementsDer}) {
        if (!part.blobs.blob(number).isNull())
            plan.components.insert(number, part.blobs.blob(number));
    }
    addDigestedFiles(plan, part);
    keepRoom(plan, code.image->slices[index]);
    if (!part.cms().isEmpty())
        plan.makeCms = [cms = part.cms()](const QByteArray &, const QList<DirectoryDigest> &) {
            return platform::Result<QByteArray>(cms);
        };
    return plan;
}

enum class Way { takenOff, over };

platform::Outcome resign(const QString &file, const QString &copy, Way way)
{
    QFile::remove(copy);
    if (!QFile::copy(file, copy))
        return platform::Error{QStringLiteral("it cannot be copied")};
    const auto code = readCodeSignature(copy);
    if (!code || !code->image)
        return platform::Error{code.error()};
    QList<SignaturePlan> plans;
    for (qsizetype index = 0; index < code->parts.size(); ++index)
        plans.append(planAfter(*code, index));
    const platform::Outcome prepared = way == Way::takenOff ? stripMachO(copy) : platform::Outcome();
    return prepared ? signMachO(copy, plans) : prepared;
}

} // namespace

int main(int argc, char **argv)
{
    const bool isOver = argc == 4 && qstrcmp(argv[1], "--over") == 0;
    if (argc != 3 && !isOver)
        return 2;
    const char *file = argv[argc - 2];
    const platform::Outcome done =
        resign(QString::fromLocal8Bit(file), QString::fromLocal8Bit(argv[argc - 1]),
               isOver ? Way::over : Way::takenOff);
    if (!done)
        std::fprintf(stderr, "%s: %s\n", file, qPrintable(done.error()));
    return done ? 0 : 1;
}
