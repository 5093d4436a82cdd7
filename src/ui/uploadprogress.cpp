#include "ui/uploadprogress.h"

#include "document/mainwincontroller.h"
#include "notarization/uploadstep.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int interval = 1000; // milliseconds
constexpr qint64 longestFile = 64; // bytes

/// Empty where the session has no folder of its own.
QString folderOfUploads()
{
    const QString session = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return session.isEmpty() ? QString() : session + u"/sealwright-uploads"_s;
}

QString nameFor(const QString &uploadedFile)
{
    return QString::fromLatin1(
        QCryptographicHash::hash(QFile::encodeName(uploadedFile), QCryptographicHash::Sha1).toHex());
}

} // namespace

void uploadprogress::askFor()
{
    if (const QString folder = folderOfUploads(); !folder.isEmpty()) [[maybe_unused]]
        const bool isMade = QDir().mkdir(folder);
}

std::optional<StepList::Parts> uploadprogress::of(const QString &uploadedFile)
{
    const QString folder = folderOfUploads();
    QFile file(folder + u'/' + nameFor(uploadedFile));
    if (folder.isEmpty() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QList<QByteArray> numbers = file.read(longestFile).trimmed().split(' ');
    const qint64 sent = numbers.value(0).toLongLong();
    const qint64 size = numbers.value(1).toLongLong();
    if (numbers.size() != 2 || size <= 0 || sent < 0 || sent > size)
        return std::nullopt;
    return StepList::Parts{.done = sent, .all = size, .unit = StepList::Parts::Unit::bytes};
}

UploadProgress::UploadProgress(MainWinController &document, QObject *parent)
    : QObject(parent)
    , m_document(document)
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &UploadProgress::look);
    connect(&document.stepList, &Observable::changed, this, &UploadProgress::follow);
}

void UploadProgress::follow()
{
    const StepList::Row *const row = m_document.stepList.running();
    const bool isUploading = row && row->step == step::upload;
    if (!isUploading)
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start();
}

void UploadProgress::look()
{
    if (const auto parts = uploadprogress::of(m_document.submitFilePath()))
        m_document.stepList.advance(*parts);
}

} // namespace sealwright
