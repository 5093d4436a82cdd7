#pragma once

#include "formats/notary/notaryapi.h"
#include "formats/notary/partqueue.h"

#include <functional>
#include <mutex>

namespace toolchain::notary {

/// A file that is about to be uploaded, open for reading. What is known of it is taken when it is opened, and
/// a file that is another one afterwards is found out.
class UploadFile {
public:
    /// Fails for what is no regular file, cannot be read, or is empty. Reads the whole file once.
    [[nodiscard]] static platform::Result<std::shared_ptr<UploadFile>> open(const QString &path);
    ~UploadFile();
    UploadFile(const UploadFile &) = delete;
    UploadFile &operator=(const UploadFile &) = delete;

    [[nodiscard]] QString name() const; ///< the last part of its path
    [[nodiscard]] qint64 size() const { return m_size; }
    [[nodiscard]] const QByteArray &sha256() const { return m_sha256; } ///< 64 lower-case hexadecimal digits
    /// The pieces in which it is sent; one piece is a single request.
    [[nodiscard]] const QList<FilePiece> &pieces() const { return m_pieces; }
    [[nodiscard]] const QByteArray &digestOf(qsizetype piece) const { return m_digests.at(piece); }
    [[nodiscard]] bool hasChanged() const;

private:
    UploadFile(QString path, int descriptor);
    [[nodiscard]] platform::Outcome readWhole();
    [[nodiscard]] platform::Outcome readPieces();

    const QString m_path;
    const int m_descriptor;
    qint64 m_size = 0;
    qint64 m_changed = 0; ///< nanoseconds
    QByteArray m_sha256;
    QList<FilePiece> m_pieces;
    QList<QByteArray> m_digests;
};

/// Sends a file to the storage: in one request up to 128 MiB, in parts above that, over two connections at
/// once. Every try is signed anew.
class Upload {
public:
    using Progress = std::function<void(qint64 sent, qint64 size)>; ///< on any thread, one at a time

    Upload(NotaryApi &api, const ServiceConfig &config, const UploadFile &file, Progress progress);

    /// The submission's identifier once the file is whole in the storage. Begins once more with a new
    /// submission if the credentials have run out meanwhile.
    [[nodiscard]] Answer<QString> run();

private:
    struct StorageCall {
        QByteArray method;
        QList<QPair<QByteArray, QByteArray>> query;
        QList<HttpHeader> headers;
        QByteArray body;
        qsizetype piece = -1; ///< of the file; -1 sends the body
    };

    /// A connection, with what is under way over it.
    struct Lane {
        HttpClient &http;
        PartQueue *parts = nullptr; ///< of which it sends a share; null for calls of their own
        Retries::Tries tries = Retries::Tries::all;
        qint64 sent = 0; ///< of the piece
    };

    [[nodiscard]] std::optional<ServiceFailure> send(const UploadPlace &place);
    [[nodiscard]] std::optional<ServiceFailure> sendWhole(const UploadPlace &place);
    [[nodiscard]] std::optional<ServiceFailure> sendInParts(const UploadPlace &place);
    [[nodiscard]] std::optional<ServiceFailure> sendParts(const UploadPlace &place,
                                                          const QByteArray &uploadId, PartQueue &parts);
    void sendShare(Lane &lane, const UploadPlace &place, const QByteArray &uploadId);
    void lendAHand(PartQueue &parts, const UploadPlace &place, const QByteArray &uploadId);
    void settle(Lane &lane, qsizetype part, const HttpReply &reply);
    [[nodiscard]] static StorageCall callForPart(qsizetype part, const QByteArray &uploadId);
    [[nodiscard]] HttpReply call(const UploadPlace &place, const StorageCall &call);
    [[nodiscard]] HttpReply call(Lane &lane, const UploadPlace &place, const StorageCall &call);
    void show(Lane &lane, qint64 sent);
    [[nodiscard]] HttpRequest requestFor(const UploadPlace &place, const StorageCall &call) const;
    [[nodiscard]] NextStep judge(const HttpReply &reply);
    [[nodiscard]] ServiceFailure failure(const HttpReply &reply);

    NotaryApi &m_api;
    const ServiceConfig m_config;
    const UploadFile &m_file;
    const Progress m_progress;
    std::mutex m_progressMutex;
    qint64 m_sent = 0; ///< over all connections
    bool m_mustStartAgain = false;
};

} // namespace toolchain::notary
