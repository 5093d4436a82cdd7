#pragma once

#include "formats/codesignature/designation.h"
#include "formats/codesignature/entitlementsder.h"
#include "formats/codesignature/machosigner.h"
#include "formats/codesignature/pagedigests.h"
#include "formats/codesignature/slicelayout.h"
#include "toolchain/machobuilder.h"
#include "toolchain/toolfixture.h"

#include <QBuffer>

#include <sys/stat.h>

/// What the bytes of a file of code hold.
inline platform::Result<toolchain::codesignature::MachOImage> imageOf(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return toolchain::codesignature::readMachOImage(buffer);
}

/// A signature without an identity.
inline toolchain::codesignature::SignaturePlan adHocPlan()
{
    using namespace toolchain::codesignature;
    SignaturePlan plan;
    plan.fields.identifier = QStringLiteral("com.example.code");
    plan.fields.flags = codeflag::adhoc;
    plan.fields.pageShift = 12;
    plan.digests = {HashType::sha1, HashType::sha256};
    plan.components.insert(slot::requirements, requirementSetBlob({}));
    return plan;
}
