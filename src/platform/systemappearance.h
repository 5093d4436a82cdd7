#pragma once

#include <QObject>

#include <utility>

namespace platform {

/// What the desktop says about light and dark, now and whenever that changes. Main thread.
class SystemAppearance : public QObject {
    Q_OBJECT

public:
    enum class Scheme { noPreference, dark, light };

    Scheme scheme() const { return m_scheme; }

Q_SIGNALS:
    void changed();

protected:
    /// For whoever hears the desktop: keeps what it says now, and tells of a change.
    void setScheme(Scheme scheme)
    {
        if (std::exchange(m_scheme, scheme) != scheme)
            Q_EMIT changed();
    }

private:
    Scheme m_scheme = Scheme::noPreference;
};

} // namespace platform
