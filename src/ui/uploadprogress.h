#pragma once

#include "document/steplist.h"

#include <QTimer>

#include <optional>

namespace sealwright {

class MainWinController;

/// What a notary tool tells of its uploads, where it is one that does: a file for each in the folder
/// "sealwright-uploads" of this session's XDG_RUNTIME_DIR, which is there once somebody has asked.
namespace uploadprogress {

/// Has the tools that are started from now on tell. Without a folder of the session nothing happens.
void askFor();
/// Nothing if no tool tells of an upload of that file, given by its absolute path.
[[nodiscard]] std::optional<StepList::Parts> of(const QString &uploadedFile);

} // namespace uploadprogress

/// Keeps a document's steps told of its upload, once a second. Main thread.
class UploadProgress : public QObject {
    Q_OBJECT

public:
    UploadProgress(MainWinController &document, QObject *parent);

private:
    void follow();
    void look();

    MainWinController &m_document;
    QTimer m_timer;
};

} // namespace sealwright
