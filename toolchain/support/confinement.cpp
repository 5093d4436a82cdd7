#include "support/confinement.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <vector>

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

// What later kernels added to <linux/landlock.h>; the numbers are those of landlock(7).
constexpr quint64 refer = 1ULL << 13;
constexpr quint64 truncation = 1ULL << 14;
constexpr int versionWithRefer = 2;
constexpr int versionWithTruncation = 3;
constexpr int versionWithScopes = 6;
constexpr quint64 outsideAbstractSockets = 1ULL << 0;
constexpr quint64 outsideSignals = 1ULL << 1;

/// `struct landlock_ruleset_attr` of the newest kernel that is known here. An older one is told a shorter
/// size.
struct RulesetAttributes {
    quint64 files = 0;
    quint64 network = 0;
    quint64 scopes = 0;
};

constexpr quint64 folderRights = LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_REMOVE_DIR;
constexpr quint64 writingRights = folderRights | LANDLOCK_ACCESS_FS_WRITE_FILE
    | LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_REG
    | LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_BLOCK
    | LANDLOCK_ACCESS_FS_MAKE_SYM | refer;

class Ruleset {
public:
    explicit Ruleset(int version)
        : m_truncation(version >= versionWithTruncation ? truncation : 0)
    {
        RulesetAttributes attributes{writingRights | m_truncation, 0, 0};
        if (version >= versionWithScopes)
            attributes.scopes = outsideAbstractSockets | outsideSignals;
        const std::size_t size = version >= versionWithScopes ? sizeof attributes : sizeof attributes.files;
        m_descriptor = int(syscall(SYS_landlock_create_ruleset, &attributes, size, 0));
    }
    ~Ruleset()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    Ruleset(const Ruleset &) = delete;
    Ruleset &operator=(const Ruleset &) = delete;

    void allowWriting(const QString &folder) const { allow(folder, writingRights | m_truncation); }
    void allowFolders(const QString &parent) const { allow(parent, folderRights); }
    void allowWritingFile(const QString &file) const
    {
        allow(file, LANDLOCK_ACCESS_FS_WRITE_FILE | m_truncation);
    }

    [[nodiscard]] bool enter() const { return syscall(SYS_landlock_restrict_self, m_descriptor, 0) == 0; }

private:
    /// What cannot be allowed stays forbidden, and is told by whoever wants to write there.
    void allow(const QString &path, quint64 rights) const
    {
        const int place = open(QFile::encodeName(path).constData(), O_PATH | O_CLOEXEC);
        if (place < 0)
            return;
        const landlock_path_beneath_attr rule{rights, place};
        syscall(SYS_landlock_add_rule, m_descriptor, LANDLOCK_RULE_PATH_BENEATH, &rule, 0);
        close(place);
    }

    const quint64 m_truncation;
    int m_descriptor = -1;
};

int landlockVersion()
{
    return int(syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION));
}

/// The first edition lets nobody link or move between folders, which attached volumes need.
QString keepToPlaces(const ConfinementPlaces &places)
{
    const int version = landlockVersion();
    if (version < versionWithRefer)
        return u"the kernel offers no Landlock, or one that is too old"_s;
    const Ruleset rules(version);
    rules.allowWritingFile(u"/dev/null"_s);
    for (const QString &folder : places.folders)
        rules.allowWriting(folder);
    for (const QString &parent : places.parents)
        rules.allowFolders(parent);
    return rules.enter() ? QString() : u"Landlock: %1"_s.arg(QString::fromLocal8Bit(strerror(errno)));
}

#if defined(__x86_64__)
constexpr quint32 thisArchitecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr quint32 thisArchitecture = AUDIT_ARCH_AARCH64;
#else
constexpr quint32 thisArchitecture = 0; // no filter
#endif

/// What a reader of files has no use for: the network, the bus, whose programs could act for it, and parts of
/// the kernel that go around the other rules.
constexpr std::array forbiddenCalls{
    SYS_socket,  SYS_io_uring_setup,  SYS_keyctl,      SYS_add_key,           SYS_request_key,
    SYS_bpf,     SYS_perf_event_open, SYS_userfaultfd, SYS_open_by_handle_at, SYS_truncate,
    SYS_unshare, SYS_setns,           SYS_mount,
};

/// The numbers of another way to call, x32, begin here.
constexpr quint32 otherNumbers = 0x40000000;

std::vector<sock_filter> callFilter()
{
    constexpr quint32 refuse = SECCOMP_RET_ERRNO | EPERM;
    const auto load = [](std::size_t offset) {
        return sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, quint32(offset));
    };
    std::vector<sock_filter> filter{
        load(offsetof(seccomp_data, arch)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, thisArchitecture, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, refuse),
        load(offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, otherNumbers, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, refuse),
    };
    for (const long number : forbiddenCalls) {
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, quint32(number), 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, refuse));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    return filter;
}

QString keepToCalls()
{
    if (thisArchitecture == 0)
        return u"there is no filter of calls for this kind of processor"_s;
    std::vector<sock_filter> filter = callFilter();
    const sock_fprog program{(unsigned short)(filter.size()), filter.data()};
    const bool isSet = syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &program) == 0;
    return isSet ? QString() : u"seccomp: %1"_s.arg(QString::fromLocal8Bit(strerror(errno)));
}

} // namespace

platform::Result<void> confineThisProcess(const ConfinementPlaces &places)
{
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return platform::Error{QString::fromLocal8Bit(strerror(errno))};
    QStringList problems{keepToPlaces(places), keepToCalls()};
    problems.removeAll(QString());
    return problems.isEmpty() ? platform::Result<void>() : platform::Error{problems.join(u"; "_s)};
}

ReaderConfinement::ReaderConfinement(ConfinementPlaces places)
{
    if (const QString temporary = m_temporary.path(); !temporary.isEmpty()) {
        qputenv("TMPDIR", QFile::encodeName(temporary));
        places.folders.append(temporary);
        places.parents.append(QFileInfo(temporary).path());
    }
    if (const auto confined = confineThisProcess(places); !confined)
        m_complaint = confined.error();
}

void ReaderConfinement::tellComplaint(const char *program) const
{
    if (!m_complaint.isEmpty())
        fprintf(stderr, "%s: reads without a sandbox: %s\n", program, qUtf8Printable(m_complaint));
}

} // namespace toolchain
