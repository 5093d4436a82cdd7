#pragma once

#include "notaryd/service.h"

namespace notaryd {

/// The storage for uploads: S3's PUT of an object and its multipart upload, under "/s3/BUCKET/OBJECT". Bodies
/// go to the disk as they come.
[[nodiscard]] std::unique_ptr<Handler> storageHandler(Service &service, const Request &request);

/// Who asks, by the request's signature, or the error that refuses it.
struct StorageCaller {
    std::optional<UploadSession> session;
    Response refusal;
};
[[nodiscard]] StorageCaller callerOf(Service &service, const Request &request);

} // namespace notaryd
