// Requirements in their binary form. A text that is printed can be compiled, and prints as the same text
// again.

#include "formats/codesignature/requirement.h"
#include "fuzz/fuzzing.h"

using namespace toolchain::codesignature;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = inputBytes(data, size);
    const auto text = requirementText(bytes);
    (void)meetsRequirement(bytes, RequirementSubject());
    (void)readRequirementSet(bytes);
    if (!text)
        return 0;
    const auto compiled = compileRequirement(*text);
    if (compiled)
        require(requirementText(*compiled).valueOr(QString()) == *text);
    return 0;
}
