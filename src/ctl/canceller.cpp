#include "ctl/canceller.h"

#include "ctl/output.h"
#include "scripting/dbus/busnames.h"

using namespace Qt::StringLiterals;

namespace sealwright {

Canceller::Canceller(const Client &client, const LogFollower &follower, Effect effect)
    : m_client(client)
    , m_follower(follower)
    , m_effect(effect)
{
    connect(&m_interrupt, &Interrupt::arrived, this, &Canceller::interrupted);
    connect(&follower, &LogFollower::documentFound, this, &Canceller::cancelOnce);
}

void Canceller::interrupted()
{
    if (m_cancel != Cancel::notAsked)
        return cancelOnce();
    m_cancel = Cancel::asked;
    if (m_effect == Effect::isIgnored)
        output::printError(u"sealwrightctl: this cannot be cancelled; waiting for its end"_s);
    cancelOnce();
}

void Canceller::cancelOnce()
{
    if (m_cancel != Cancel::asked || m_follower.documentPath().isEmpty())
        return;
    m_cancel = Cancel::sent;
    for (const QString &path : m_follower.documentPaths())
        m_client.connection().send(Client::method(path, bus::documentInterface, u"Cancel"_s));
}

} // namespace sealwright
