#pragma once

#include "document/documentextension.h"

#include <QString>

class SLWTaskResponse;

/// Signs flat installer packages, which codesign cannot.
class PackageSteps : private DocumentExtension {
public:
    explicit PackageSteps(MainWinController &owner)
        : DocumentExtension(owner)
    {
    }

    /// Signs the package in the working folder unless its signature is good already. False after a failure
    /// that has been reported. Worker thread.
    [[nodiscard]] bool checkPkgAndSignWithID(const QString &identity);

private:
    bool signPackage(const QString &identity);
    bool replacePackage(const QString &signedPackage);
};

/// Whether the assessment of a package says that its signature is good.
[[nodiscard]] bool hasUsableSignature(const SLWTaskResponse &assessment);
