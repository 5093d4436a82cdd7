#pragma once

#include "toolchain/toolfixture.h"

#include "formats/identities.h"

/// A file of tests/data.
[[nodiscard]] QByteArray readTestData(const QString &name);

/// A keychain in a folder of its own, which the toolchain's libraries in this process use too.
class KeychainFixture : public ToolFixture {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Makes "Example Corp (A1B2C3D4E5)" of a kind.
    void makeIdentity(toolchain::IdentityKind kind) const;

    /// Whether the openssl program finds a detached CMS to be over this content, whoever signed it.
    [[nodiscard]] bool opensslVerifies(const QByteArray &cms, const QByteArray &content) const;
};
