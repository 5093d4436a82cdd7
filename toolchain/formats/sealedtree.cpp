#include "formats/sealedtree.h"

#include <QFile>

#include <filesystem>

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;

namespace toolchain {

namespace {

/// Feeds a file to both digests in one reading; the error is empty on success.
QString digestFile(const QString &path, SealedFile &result)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return path + u": "_s + file.errorString();
    FileDigester digester;
    QByteArray block(1 << 18, Qt::Uninitialized);
    qint64 length = 0;
    while ((length = file.read(block.data(), block.size())) > 0)
        digester.add(QByteArrayView(block.constData(), length));
    if (length < 0)
        return path + u": "_s + file.errorString();
    result = digester.result();
    return {};
}

QString readEntry(const fs::directory_entry &entry, const QString &path, SealedFile &result)
{
    std::error_code error;
    if (QString::fromUtf8(entry.path().native()).toUtf8() != entry.path().native().c_str())
        return path + u": the name is not valid UTF-8"_s;
    if (entry.is_symlink(error)) {
        const fs::path target = fs::read_symlink(entry.path(), error);
        result.linkTarget = QString::fromUtf8(target.native());
        return error ? path + u": "_s + QString::fromStdString(error.message()) : QString();
    }
    if (entry.is_regular_file(error))
        return digestFile(path, result);
    return path + u": neither a file, a folder nor a symbolic link"_s;
}

} // namespace

void FileDigester::add(QByteArrayView bytes)
{
    m_sha1.addData(bytes);
    m_sha256.addData(bytes);
}

SealedFile FileDigester::result() const
{
    return {m_sha1.result(), m_sha256.result(), {}};
}

SealedTreeResult readSealedTree(const QString &base)
{
    SealedTreeResult result;
    std::error_code error;
    auto entry = fs::recursive_directory_iterator(base.toStdString(), error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        if (!entry->is_symlink() && entry->is_directory())
            continue;
        const QString path = QString::fromUtf8(entry->path().native());
        SealedFile file;
        result.error = readEntry(*entry, path, file);
        if (!result.error.isEmpty())
            return result;
        result.tree.insert(path.mid(base.size() + 1), file);
    }
    if (error)
        result.error = base + u": "_s + QString::fromStdString(error.message());
    return result;
}

} // namespace toolchain
