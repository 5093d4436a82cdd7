#pragma once

#include "toolchain/bundlebuilder.h"
#include "toolchain/toolfixture.h"

/// An app, and an identity of the test's own to sign it with.
class AppToTest : public ToolFixture {
protected:
    void SetUp() override
    {
        ToolFixture::SetUp();
        makeIdentity();
        bundlebuilder::makeApp(app(), QStringLiteral("com.example.app"));
    }

    [[nodiscard]] QString app() const { return path(QStringLiteral("My App.app")); }
    [[nodiscard]] QString contents(const QString &name) const
    {
        return app() + QStringLiteral("/Contents/") + name;
    }
};
