#include "formats/resourceseal/filedigests.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <openssl/evp.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <memory>
#include <thread>

using namespace Qt::StringLiterals;

namespace toolchain::seal {

namespace {

constexpr std::size_t blockSize = 1 << 18; // bytes
constexpr std::size_t jobsTakenAtOnce = 16;

/// One thread's digests and its buffer.
class Digester {
public:
    void run(const QByteArray &base, DigestJob &job)
    {
        const QByteArray path = base + '/' + job.path;
        const int descriptor = open(path.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (descriptor < 0) {
            job.problem = errno == ELOOP ? u"a symbolic link where a file was"_s
                                         : QString::fromLocal8Bit(std::strerror(errno));
            return;
        }
        digest(descriptor, job);
        close(descriptor);
    }

private:
    struct FreeContext {
        void operator()(EVP_MD_CTX *context) const { EVP_MD_CTX_free(context); }
    };
    using Context = std::unique_ptr<EVP_MD_CTX, FreeContext>;

    void digest(int descriptor, DigestJob &job)
    {
        struct stat before { };
        if (fstat(descriptor, &before) != 0 || !S_ISREG(before.st_mode)) {
            job.problem = u"not a regular file"_s;
            return;
        }
        begin(job);
        if (!addAll(descriptor, job)) {
            job.problem = QString::fromLocal8Bit(std::strerror(errno));
            return;
        }
        struct stat after { };
        if (fstat(descriptor, &after) != 0 || after.st_size != before.st_size
            || after.st_mtim.tv_sec != before.st_mtim.tv_sec
            || after.st_mtim.tv_nsec != before.st_mtim.tv_nsec) {
            job.problem = u"the file changed while it was read"_s;
            return;
        }
        if (job.wantsSha1)
            finish(m_sha1, job.sha1);
        if (job.wantsSha256)
            finish(m_sha256, job.sha256);
    }

    void begin(const DigestJob &job)
    {
        if (job.wantsSha1)
            EVP_DigestInit_ex2(m_sha1.get(), m_sha1Algorithm.get(), nullptr);
        if (job.wantsSha256)
            EVP_DigestInit_ex2(m_sha256.get(), m_sha256Algorithm.get(), nullptr);
    }

    bool addAll(int descriptor, const DigestJob &job)
    {
        while (true) {
            const ssize_t length = read(descriptor, m_block.data(), m_block.size());
            if (length < 0 && errno == EINTR)
                continue;
            if (length <= 0)
                return length == 0;
            if (job.wantsSha1)
                EVP_DigestUpdate(m_sha1.get(), m_block.data(), std::size_t(length));
            if (job.wantsSha256)
                EVP_DigestUpdate(m_sha256.get(), m_block.data(), std::size_t(length));
        }
    }

    template <std::size_t Size>
    static void finish(const Context &context, StoredDigest<Size> &digest)
    {
        auto *place = reinterpret_cast<unsigned char *>(digest.bytes.data());
        digest.isMade = EVP_DigestFinal_ex(context.get(), place, nullptr) == 1;
    }

    struct FreeAlgorithm {
        void operator()(EVP_MD *algorithm) const { EVP_MD_free(algorithm); }
    };
    using Algorithm = std::unique_ptr<EVP_MD, FreeAlgorithm>;

    const Algorithm m_sha1Algorithm{EVP_MD_fetch(nullptr, "SHA1", nullptr)};
    const Algorithm m_sha256Algorithm{EVP_MD_fetch(nullptr, "SHA256", nullptr)};
    const Context m_sha1{EVP_MD_CTX_new()};
    const Context m_sha256{EVP_MD_CTX_new()};
    std::vector<char> m_block = std::vector<char>(blockSize);
};

} // namespace

void digestJobs(const QString &base, std::size_t count,
                const std::function<DigestJob &(std::size_t number)> &jobAt)
{
    const QByteArray folder = QFile::encodeName(base);
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        Digester digester;
        for (std::size_t from = next.fetch_add(jobsTakenAtOnce); from < count;
             from = next.fetch_add(jobsTakenAtOnce)) {
            for (std::size_t job = from; job < std::min(from + jobsTakenAtOnce, count); ++job)
                digester.run(folder, jobAt(job));
        }
    };
    const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::jthread> others;
    for (std::size_t core = 1; core < std::min(cores, count / jobsTakenAtOnce + 1); ++core)
        others.emplace_back(work);
    work();
}

} // namespace toolchain::seal
