#include "formats/packedfiles.h"

using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

constexpr qsizetype mostKeptBytes = 64 << 20;

} // namespace

PackedFileTaker::PackedFileTaker(PackedFiles &result, QString path, bool keepsBytes)
    : m_result(result)
    , m_path(std::move(path))
    , m_keepsBytes(keepsBytes)
{
}

bool PackedFileTaker::add(QByteArrayView bytes)
{
    m_digester.add(bytes);
    if (!m_keepsBytes)
        return true;
    if (m_kept.size() + bytes.size() > mostKeptBytes) {
        m_result.error = u"\"%1\" is too large"_s.arg(m_path);
        return false;
    }
    m_kept.append(bytes);
    return true;
}

void PackedFileTaker::finish()
{
    m_result.files.insert(m_path, m_digester.result());
    if (m_keepsBytes)
        m_result.kept.insert(m_path, m_kept);
}

} // namespace toolchain
