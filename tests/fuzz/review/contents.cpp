// A file of an item: Mach-O, an archive of any kind, or anything else.

#include "formats/review/codefacts.h"
#include "formats/review/contentwalk.h"
#include "formats/review/judge.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

namespace {

using namespace toolchain::review;

class Reader : public WalkVisitor {
public:
    void machO(const WalkFile &file) override
    {
        const CodeFacts facts = readCodeFacts(file.place.file, {});
        if (facts.slices.isEmpty() == facts.damage.isEmpty())
            std::abort(); // code, or a reason why not
        for (const SliceFacts &slice : facts.slices) {
            for (const Objection objection : objectionsTo(slice)) {
                if (message(objection).isEmpty())
                    std::abort();
            }
        }
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("item.dmg")));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        std::abort();
    file.write(reinterpret_cast<const char *>(data), qint64(size));
    file.close();
    constexpr qint64 mostBytes = 16 << 20;
    constexpr qint64 mostEntries = 1000;
    UnpackBudget budget{mostBytes, mostEntries};
    Reader reader;
    walkContents(file.fileName(), budget, reader);
    return 0;
}
