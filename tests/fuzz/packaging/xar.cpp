// A package's table of contents: every path stays inside, and a table that can be signed can be read again.

#include "formats/xar/toc.h"
#include "fuzz/fuzzing.h"

using namespace toolchain;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray xml = inputBytes(data, size);
    const auto toc = xar::readToc(xml);
    if (!toc)
        return 0;
    for (const xar::TocFile &file : toc->files)
        require(!file.path.isEmpty() && !file.path.startsWith(QLatin1Char('/'))
                && !(QLatin1Char('/') + file.path + QLatin1Char('/')).contains(QStringLiteral("/../")));
    const auto signedToc = xar::tocWithSignatures(xml, *toc, {{"certificate"}, 256, 9'216});
    if (!signedToc)
        return 0;
    const auto again = xar::readToc(signedToc->xml);
    require(again && again->files.size() == toc->files.size() && again->signature->place == signedToc->rsa);
    return 0;
}
