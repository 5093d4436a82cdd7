#pragma once

#include <QByteArray>

#include <functional>

namespace notaryd {

/// Tells whoever started the service how that went, and lets go of them.
class Starter {
public:
    /// A pipe's end; -1 for a service in the foreground, which tells nobody.
    explicit Starter(int descriptor)
        : m_descriptor(descriptor)
        , m_isInBackground(descriptor >= 0)
    {
    }
    /// "+ADDRESS" or "-REASON", with a line end.
    void tell(const QByteArray &text);
    [[nodiscard]] bool isInBackground() const { return m_isInBackground; }

private:
    int m_descriptor;
    const bool m_isInBackground;
};

/// Runs the service in a process of its own, without the terminal and the files of this one, and waits until
/// it has told its starter something. Prints the address or the reason and answers the exit status.
[[nodiscard]] int serveInBackground(const std::function<int(Starter)> &serve);

} // namespace notaryd
