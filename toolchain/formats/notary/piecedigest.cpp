#include "formats/notary/piecedigest.h"

#include <openssl/evp.h>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <cstring>
#include <memory>
#include <mutex>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Outcome;
using platform::Result;

namespace toolchain::notary {

namespace {

constexpr qint64 windowSize = 4LL << 20; // a multiple of the size of a page
const QString becameShorter = u"it became shorter while it was being read"_s;

thread_local sigjmp_buf *wayOut = nullptr;

/// Only of bytes that a thread expects to lose is the signal taken; else it ends the process, as it would
/// without this.
void leaveLostBytes(int number)
{
    if (wayOut)
        siglongjmp(*wayOut, 1);
    std::signal(number, SIG_DFL);
    std::raise(number);
}

/// Who looks at a file in place gets SIGBUS where the file has been cut short meanwhile, or its disk fails.
/// As long as one of these lives in the process, its threads can look safely.
class LostBytes {
public:
    LostBytes()
    {
        const std::scoped_lock lock(mutex);
        struct sigaction taken = {};
        taken.sa_handler = leaveLostBytes;
        if (users++ == 0)
            sigaction(SIGBUS, &taken, &before);
    }
    ~LostBytes()
    {
        const std::scoped_lock lock(mutex);
        if (--users == 0)
            sigaction(SIGBUS, &before, nullptr);
    }
    LostBytes(const LostBytes &) = delete;
    LostBytes &operator=(const LostBytes &) = delete;

    /// False if the bytes were lost on the way.
    [[nodiscard]] static bool add(EVP_MD_CTX *digest, const void *bytes, size_t length)
    {
        sigjmp_buf here;
        if (sigsetjmp(here, 1) != 0) {
            wayOut = nullptr;
            return false;
        }
        wayOut = &here;
        EVP_DigestUpdate(digest, bytes, length);
        wayOut = nullptr;
        return true;
    }

private:
    static inline std::mutex mutex;
    static inline int users = 0;
    static inline struct sigaction before = {};
};

/// Where a file cannot be looked at in place.
Outcome addByReading(EVP_MD_CTX *digest, const FilePiece &window)
{
    QByteArray bytes(qsizetype(window.length), Qt::Uninitialized);
    for (qint64 done = 0; done < window.length;) {
        const ssize_t length = pread(window.descriptor, bytes.data() + done, size_t(window.length - done),
                                     off_t(window.offset + done));
        if (length == 0)
            return Error{becameShorter};
        if (length < 0 && errno != EINTR)
            return Error{QString::fromLocal8Bit(std::strerror(errno))};
        done += std::max<ssize_t>(0, length);
    }
    EVP_DigestUpdate(digest, bytes.constData(), size_t(bytes.size()));
    return {};
}

/// In place: to copy the bytes first would take a seventh of the time.
Outcome add(EVP_MD_CTX *digest, const FilePiece &window)
{
    void *const bytes =
        mmap(nullptr, size_t(window.length), PROT_READ, MAP_SHARED, window.descriptor, off_t(window.offset));
    if (bytes == MAP_FAILED)
        return addByReading(digest, window);
    const bool isWhole = LostBytes::add(digest, bytes, size_t(window.length));
    munmap(bytes, size_t(window.length));
    return isWhole ? Outcome::success() : Error{becameShorter};
}

} // namespace

Result<QByteArray> sha256Of(const FilePiece &piece)
{
    const LostBytes guard;
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX *)> digest(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    EVP_DigestInit_ex(digest.get(), EVP_sha256(), nullptr);
    for (qint64 done = 0; done < piece.length; done += windowSize) {
        const qint64 length = std::min(windowSize, piece.length - done);
        const Outcome added = add(digest.get(), {piece.descriptor, piece.offset + done, length});
        if (!added)
            return added.failure();
    }
    QByteArray bytes(32, '\0');
    EVP_DigestFinal_ex(digest.get(), reinterpret_cast<unsigned char *>(bytes.data()), nullptr);
    return bytes.toHex();
}

} // namespace toolchain::notary
