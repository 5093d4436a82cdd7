#include "formats/notary/waits.h"

#include <QByteArray>
#include <QRandomGenerator>

#include <algorithm>
#include <thread>

namespace toolchain::notary {

double waitScale()
{
    bool isNumber = false;
    const double scale = qgetenv("SEALWRIGHT_WAIT_SCALE").toDouble(&isNumber);
    return isNumber && scale >= 0 && scale <= 1 ? scale : 1;
}

Milliseconds scaled(Milliseconds wait)
{
    return Milliseconds(qint64(double(wait.count()) * waitScale()));
}

Milliseconds scaledLimit(Milliseconds limit, Milliseconds least)
{
    return std::max(scaled(limit), least);
}

Milliseconds spread(Milliseconds wait)
{
    const double factor = 0.75 + QRandomGenerator::global()->generateDouble() / 2;
    return Milliseconds(qint64(double(wait.count()) * factor));
}

void sleepFor(Milliseconds wait)
{
    std::this_thread::sleep_for(wait);
}

} // namespace toolchain::notary
