#pragma once

#include "platform/systemappearance.h"

#include <memory>

namespace platform {

/// What the application is drawn in, which follows the system's settings. Public document: Apple's
/// NSAppearance.
class MacAppearance : public SystemAppearance {
public:
    MacAppearance();
    ~MacAppearance() override;

private:
    class Observation;

    std::unique_ptr<Observation> m_observation;
};

} // namespace platform
