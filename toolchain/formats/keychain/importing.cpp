#include "formats/keychain/importing.h"

#include <openssl/err.h>
#include <openssl/pem.h>

#include "formats/certificatefile.h"
#include "formats/cryptography.h"
#include "formats/keychain/stretching.h"

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain {

namespace {

constexpr qsizetype mostBytes = 16 << 20;
constexpr qsizetype mostItems = 1000;

/// Where libcrypto's question for a passphrase leads, and what came of it.
struct Asking {
    const PassphraseSource &source;
    Outcome answered; ///< fails where the source has none, or none that can be taken
};

int answerFor(char *buffer, int size, int, void *asking)
{
    auto *state = static_cast<Asking *>(asking);
    const auto passphrase = state->source();
    if (!passphrase || passphrase->size() > size) {
        state->answered = passphrase ? Error{u"the passphrase is too long"_s} : passphrase.failure();
        return -1;
    }
    std::copy(passphrase->begin(), passphrase->end(), buffer);
    return static_cast<int>(passphrase->size());
}

/// The parts of a PEM file that hold private keys, each from its beginning to the next part.
QList<QByteArray> keyBlocksIn(const QByteArray &bytes)
{
    const QByteArray beginning = "-----BEGIN ";
    QList<QByteArray> blocks;
    for (qsizetype at = bytes.indexOf(beginning); at >= 0 && blocks.size() < mostItems;) {
        const qsizetype next = bytes.indexOf(beginning, at + 1);
        const QByteArray block = bytes.mid(at, next < 0 ? -1 : next - at);
        if (block.left(block.indexOf('\n')).contains("PRIVATE KEY-----"))
            blocks.append(block);
        at = next;
    }
    return blocks;
}

Result<ImportedItems> readPem(const QByteArray &bytes, const PassphraseSource &passphrase)
{
    ImportedItems items{certificatesInPem(bytes), {}};
    Asking asking{passphrase, {}};
    for (const QByteArray &block : keyBlocksIn(bytes)) {
        const MemoryFile memory = memoryOver(block);
        const Key key(PEM_read_bio_PrivateKey(memory.get(), nullptr, answerFor, &asking));
        ERR_clear_error();
        if (!key)
            return asking.answered ? Error{u"a key in it cannot be read, or the passphrase is wrong"_s}
                                   : asking.answered.failure();
        items.keys.append(derOf(key.get()));
    }
    return items;
}

/// A PEM file may ask for stretching by its own numbers, as PKCS #12 may.
bool isBearablePem(const QByteArray &bytes)
{
    const MemoryFile memory = memoryOver(bytes);
    bool isBearable = true;
    char *name = nullptr;
    char *header = nullptr;
    unsigned char *data = nullptr;
    long length = 0;
    while (PEM_read_bio(memory.get(), &name, &header, &data, &length) == 1) {
        const QByteArray der(reinterpret_cast<char *>(data), static_cast<qsizetype>(length));
        if (qstrcmp(name, PEM_STRING_PKCS8) == 0)
            isBearable = isBearable && isBearableKey(der);
        OPENSSL_free(name);
        OPENSSL_free(header);
        OPENSSL_free(data);
    }
    ERR_clear_error();
    return isBearable;
}

} // namespace

Result<ImportedItems> readImport(const QByteArray &bytes, const PassphraseSource &passphrase)
{
    if (bytes.size() > mostBytes)
        return Error{u"the file is too large for certificates and keys"_s};
    if (bytes.contains("-----BEGIN "))
        return isBearablePem(bytes) ? readPem(bytes, passphrase)
                                    : Error{u"its passphrase would be stretched without end"_s};
    if (const Certificate certificate = certificateFrom(bytes))
        return ImportedItems{{bytes}, {}};
    if (const Key key = keyFrom(bytes))
        return ImportedItems{{}, {derOf(key.get())}};
    return readPkcs12(bytes, passphrase);
}

} // namespace toolchain
