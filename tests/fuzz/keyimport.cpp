#include "fuzz/fuzzing.h"

#include "formats/cryptography.h"
#include "formats/keychain/importing.h"

using namespace toolchain;

/// Bytes as a file that somebody imports: PKCS#12, PEM or DER, with the passphrase that those of the corpus
/// have.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto items = readImport(inputBytes(data, size), [] { return QByteArray("secret"); });
    if (!items)
        require(!items.error().isEmpty());
    else
        for (const QByteArray &key : items->keys)
            require(key.isEmpty() || keyFrom(key) != nullptr);
    return 0;
}
