// A bundle's CodeResources: what is read must be writable, and be read alike then.

#include "formats/resourceseal/sealformat.h"
#include "fuzz/fuzzing.h"

using namespace toolchain;

namespace {

std::vector<seal::NamedEntry> listOf(const QHash<QByteArray, seal::Entry> &entries)
{
    std::vector<seal::NamedEntry> list;
    for (auto entry = entries.begin(); entry != entries.end(); ++entry)
        list.push_back({entry.key(), *entry});
    return list;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto read = seal::readSeal(inputBytes(data, size));
    if (!read)
        return 0;
    const auto rules = seal::RuleSet::fromRules(read->rules2);
    if (rules)
        (void)rules->coverageOf("Resources/de.lproj/InfoPlist.strings");
    const seal::RuleSet none = *seal::RuleSet::fromRules({});
    const auto again = seal::readSeal(seal::sealBytes(listOf(read->files), listOf(read->files2), none, none));
    require(again && again->files2.size() == read->files2.size()
            && again->files.size() == read->files.size());
    return 0;
}
