// What one of thousands of open documents costs.

#include "rows.h"

#include "support/testhost.h"

#include "scripting/NSApplication+Scripting.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int few = 300;
constexpr int many = 3000;
constexpr int rounds = 21;

void openUpTo(TestHost &host, int documents)
{
    while (host.application().allControllers().size() < documents)
        host.application().newDocument(1); // in a window of its own
}

} // namespace

/// Listing them may take ten times as long for ten times as many, and no more.
QList<Figure> rows::manyDocuments()
{
    TestHost hostOfFew;
    hostOfFew.launch();
    openUpTo(hostOfFew, few);
    TestHost hostOfMany;
    hostOfMany.launch();
    const double opening = measuring::seconds([&hostOfMany] { openUpTo(hostOfMany, many); });
    const auto list = [](TestHost &host, int documents) {
        if (host.application().scripting().orderedDocuments().size() != documents)
            qFatal("a document is missing");
    };
    const double share = measuring::ratio(
        rounds, [&] { list(hostOfMany, many); }, [&] { list(hostOfFew, few); });
    return {{u"listing 3,000 documents, over ten times listing 300"_s, share / (many / few), 2, {}},
            {u"    opening one of 3,000, without its widgets"_s, opening * 1000 / many, 5, u"ms"_s}};
}
