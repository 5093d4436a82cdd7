#pragma once

#include "formats/codesignature/verification.h"
#include "formats/fileattributes.h"
#include "toolchain/apptotest.h"
#include "toolchain/coveredbytes.h"
#include "toolchain/machobuilder.h"

/// Judges the app, by the tool or in this process.
class CodeVerify : public AppToTest {
protected:
    [[nodiscard]] QString executable() const { return contents(QStringLiteral("MacOS/My App")); }

    [[nodiscard]] ToolResult verify(const QStringList &arguments) const
    {
        return run(codesign, QStringList{QStringLiteral("--verify")} + arguments);
    }
    [[nodiscard]] ToolResult adHoc(const QString &item, const QStringList &more = {}) const
    {
        return run(codesign,
                   more
                       + QStringList{QStringLiteral("-f"), QStringLiteral("--deep"), QStringLiteral("-s"),
                                     QStringLiteral("-"), item});
    }
    /// Judges in this process, where a thousand times are quick.
    [[nodiscard]] toolchain::codesignature::Verification judge(const QString &item) const
    {
        if (!m_order) {
            qputenv("SEALWRIGHT_TOOLCHAIN_STATE", path(QStringLiteral("state")).toUtf8());
            m_order.emplace();
        }
        return toolchain::codesignature::verifyCode(item, *m_order);
    }
    [[nodiscard]] static bool isFine(const toolchain::codesignature::Verification &verification)
    {
        return verification.problem.isNone() && verification.meetsDesignatedRequirement;
    }

private:
    mutable std::optional<toolchain::codesignature::VerificationOrder> m_order;
};

/// Changes one bit; twice, and it is as it was.
inline void flipByteAt(const QString &path, qint64 offset)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(offset));
    char byte = 0;
    ASSERT_TRUE(file.getChar(&byte) && file.seek(offset));
    ASSERT_TRUE(file.putChar(char(byte ^ 0x40)));
}
