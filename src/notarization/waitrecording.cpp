#include "notarization/waitrecording.h"

#include "notarization/pollinginfo.h"
#include "platform/clock.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/mainqueue.h"
#include "run/submittednames.h"
#include "run/workingfoldernames.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qsizetype longestReceipt = 1024 * 1024; // bytes; what is longer is read when the tool has ended

void keep(Run &run, const WaitRecord &record)
{
    if (const auto kept = run.wait.keep(record); !kept)
        run.log.logString(u"The wait for the verdict is not on record: %1"_s.arg(kept.error()));
}

/// For people who look at the account's history later.
void rememberName(const Run &run)
{
    run.host.mainQueue.post(
        [&host = run.host, identifier = run.requestUUID, name = run.folder.places().fileName] {
            submittednames::remember(host, identifier, name);
        });
}

} // namespace

void saveRequestUUID(Run &run)
{
    const QString path = run.folder.path(workingfolder::requestUUIDName);
    const auto saved = run.host.files.writeFileAtomically(path, run.requestUUID.toUtf8());
    if (!saved) // the service has the file all the same, and only the identifier leads back to it
        run.log.logString(
            u"The identifier of the request, %1, is not saved: %2"_s.arg(run.requestUUID, saved.error()));
}

void recordWait(Run &run, const QString &requestUUID)
{
    if (run.wait.isKept() || requestUUID.isEmpty())
        return;
    keep(run,
         {.identifier = requestUUID,
          .folder = run.folder.path(),
          .item = itempath::lastComponent(run.itemPath()),
          .original = run.folder.places().fileName,
          .since = run.host.clock.now(),
          .service = run.tools.altoolPath(),
          .credentials = run.inputs().credentials,
          .logsToFile = run.inputs().logsToFile,
          .itemState = run.folder.itemState()});
}

void nameSubmittedFolder(Run &run)
{
    run.nameFolder(workingfolder::submitted);
    saveRequestUUID(run);
    rememberName(run);
    WaitRecord record = run.wait.record();
    record.folder = run.folder.path();
    if (!record.isNone())
        keep(run, record);
}

void ReceiptListener::hear(const QByteArray &output)
{
    if (m_heard.size() + output.size() > longestReceipt)
        return;
    m_heard += output;
    if (const auto receipt = uploadReceipt(m_heard))
        recordWait(m_run, receipt->requestUUID);
}

} // namespace sealwright
