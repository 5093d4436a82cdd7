#include "formats/resourceseal/madeseal.h"

#include <algorithm>

namespace toolchain::seal {

namespace {

const auto byPath = [](const auto &left, const auto &right) { return comesBefore(left.path, right.path); };

Entry firstEntry(const SealedFile &file)
{
    Entry entry;
    entry.sha1 = file.sha1.view();
    entry.isOptional = file.first == Coverage::optional;
    return entry;
}

Entry secondEntry(const SealedFile &file, Digests digests)
{
    Entry entry;
    entry.sha1 = digests == Digests::sha256 ? QByteArray() : file.sha1.view();
    entry.sha256 = file.sha256.view();
    entry.isOptional = file.second == Coverage::optional;
    return entry;
}

} // namespace

MadeSeal::MadeSeal(Layout layout, Digests digests, std::vector<SealedFile> files,
                   std::vector<NamedEntry> others)
    : m_layout(layout)
    , m_digests(digests)
    , m_files(std::move(files))
    , m_others(std::move(others))
{
    std::sort(m_files.begin(), m_files.end(), byPath);
    std::sort(m_others.begin(), m_others.end(), byPath);
}

void MadeSeal::visitFiles(const EntryVisitor &visit) const
{
    for (const SealedFile &file : m_files) {
        if (file.first != Coverage::omitted)
            visit(file.path, firstEntry(file));
    }
}

void MadeSeal::visitFiles2(const EntryVisitor &visit) const
{
    auto other = m_others.begin();
    for (const SealedFile &file : m_files) {
        if (file.second == Coverage::omitted)
            continue;
        for (; other != m_others.end() && byPath(*other, file); ++other)
            visit(other->path, other->entry);
        visit(file.path, secondEntry(file, m_digests));
    }
    for (; other != m_others.end(); ++other)
        visit(other->path, other->entry);
}

bool MadeSeal::write(const SealSink &sink) const
{
    return writeSeal(sink,
                     {[this](const EntryVisitor &visit) { visitFiles(visit); },
                      [this](const EntryVisitor &visit) { visitFiles2(visit); }, firstRules(m_layout),
                      secondRules(m_layout)});
}

QByteArray MadeSeal::bytes() const
{
    QByteArray bytes;
    (void)write([&bytes](QByteArrayView more) {
        bytes.append(more);
        return true;
    });
    return bytes;
}

} // namespace toolchain::seal
