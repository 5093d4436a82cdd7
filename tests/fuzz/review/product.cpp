// What a PackageInfo or a Distribution calls its product.

#include "examine/product.h"
#include "fuzz/fuzzing.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray xml(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto product = sealwright::examine::productIn(xml);
    for (const QString &text : {product.identifier, product.version})
        require(text.size() <= 200 && !text.contains(u'\n'));
    require(product.volume.isEmpty());
    return 0;
}
