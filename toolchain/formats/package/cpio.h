#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

#include "platform/result.h"

namespace toolchain::package {

enum class CpioType { file, folder, link, other };

/// One item of a cpio archive.
struct CpioEntry {
    QByteArray path; ///< without "./" in front and "/" behind; empty for the folder that all lies in
    CpioType type = CpioType::other;
    quint32 mode = 0; ///< permissions
    quint64 size = 0; ///< bytes of the content, a link's target included
    qint64 modified = 0; ///< seconds since 1970
};

/// Told of what comes; a failure stops the reading and is handed on.
struct CpioVisitor {
    std::function<platform::Outcome(const CpioEntry &)> entry;
    std::function<platform::Outcome(QByteArrayView)> content; ///< of the last entry, block by block
};

/// Reads an archive that comes in blocks, in the portable form of POSIX ("070707", what Apple's packages
/// have) or in the newer one ("070701"). Format: POSIX.1-2001, pax, "cpio Interchange Format"; cpio(5) of the
/// BSDs.
class CpioReader {
public:
    explicit CpioReader(const CpioVisitor &visitor)
        : m_visitor(visitor)
    {
    }

    /// Names that lead out of the archive's folder, and what is no cpio archive, are failures.
    [[nodiscard]] platform::Outcome add(QByteArrayView bytes);

    /// Fails if the archive's end has not come.
    [[nodiscard]] platform::Outcome finish() const;

private:
    enum class Form { portable, newer };
    enum class State { head, name, content, padding, end };

    [[nodiscard]] platform::Outcome step(QByteArrayView &bytes);
    [[nodiscard]] platform::Outcome takeHead();
    [[nodiscard]] platform::Outcome takeName();
    [[nodiscard]] platform::Outcome giveContent(QByteArrayView &bytes);
    [[nodiscard]] bool gather(QByteArrayView &bytes, qsizetype wanted);
    void skipPadding(QByteArrayView &bytes);
    void beginNext();

    const CpioVisitor &m_visitor;
    State m_state = State::head;
    Form m_form = Form::portable;
    QByteArray m_gathered;
    qsizetype m_nameSize = 0; ///< bytes, with what pads them
    quint64 m_left = 0; ///< of the content or of what pads it
    qsizetype m_padding = 0; ///< bytes behind the content
    CpioEntry m_entry;
};

} // namespace toolchain::package
