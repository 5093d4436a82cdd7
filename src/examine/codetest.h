#pragma once

#include <QString>

namespace sealwright::examine {

/// Whether the file tool's report of a file would make the walk of a run take it for code. Tells it by the
/// file's first bytes where the report is known from them, since a run of the tool costs a thousand times as
/// much, and asks the tool where it is not.
class CodeTest {
public:
    /// The path of a file tool that a run would use in place of the host's; empty for the host's.
    explicit CodeTest(QString fileTool);

    [[nodiscard]] bool isCode(const QString &file) const;

private:
    [[nodiscard]] bool asksTool(const QString &file) const;

    const QString m_tool;
    const bool m_isHostTool;
};

} // namespace sealwright::examine
