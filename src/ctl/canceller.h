#pragma once

#include "ctl/interrupt.h"
#include "ctl/logfollower.h"

namespace sealwright {

/// Turns the first interrupt into a cancel of the document that is followed, as soon as it is known.
class Canceller : public QObject {
    Q_OBJECT

public:
    /// What an interrupt can do to the command.
    enum class Effect { cancels, isIgnored };

    Canceller(const Client &client, const LogFollower &follower, Effect effect);

private:
    void interrupted();
    void cancelOnce();

    const Client &m_client;
    const LogFollower &m_follower;
    const Effect m_effect;
    Interrupt m_interrupt;
    enum class Cancel { notAsked, asked, sent } m_cancel = Cancel::notAsked;
};

} // namespace sealwright
