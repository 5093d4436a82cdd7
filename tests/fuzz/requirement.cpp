// Requirements in their binary form. A text that is printed can be compiled, and prints as the same text
// again, unless it tells in a comment what no version of the language knows.

#include "formats/codesignature/requirement.h"
#include "fuzz/fuzzing.h"

using namespace Qt::StringLiterals;
using namespace toolchain::codesignature;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = inputBytes(data, size);
    const auto text = requirementText(bytes);
    (void)meetsRequirement(bytes, RequirementSubject());
    (void)readRequirementSet(bytes);
    if (!text || text->contains("/* opcode "_L1))
        return 0;
    const auto compiled = compileRequirement(*text);
    if (compiled)
        require(requirementText(*compiled).valueOr(QString()) == *text);
    return 0;
}
