#include "formats/certificatefile.h"

#include <QFile>

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <algorithm>

#include "formats/keychain/privatefile.h"
#include "formats/statefolder.h"

namespace toolchain {

namespace {

constexpr qint64 mostBytes = 1 << 20;

bool answersFor(X509 *certificate, const QString &host)
{
    const QByteArray name = host.toUtf8();
    return X509_check_ip_asc(certificate, name.constData(), 0) == 1
        || X509_check_host(certificate, name.constData(), static_cast<size_t>(name.size()), 0, nullptr) == 1;
}

} // namespace

QList<QByteArray> certificatesInPem(const QByteArray &pem)
{
    QList<QByteArray> certificates;
    const MemoryFile memory = memoryOver(pem);
    unsigned char *bytes = nullptr;
    long length = 0;
    while (PEM_bytes_read_bio(&bytes, &length, nullptr, PEM_STRING_X509, memory.get(), nullptr, nullptr)
           == 1) {
        certificates.append(QByteArray(reinterpret_cast<char *>(bytes), static_cast<qsizetype>(length)));
        OPENSSL_free(bytes);
    }
    ERR_clear_error();
    return certificates;
}

QList<QByteArray> readCertificateFile(const QString &path)
{
    QFile file(path);
    return !path.isEmpty() && file.open(QIODevice::ReadOnly) ? certificatesInPem(file.read(mostBytes))
                                                             : QList<QByteArray>();
}

QByteArray pemOf(const QList<QByteArray> &certificates)
{
    const MemoryFile memory(BIO_new(BIO_s_mem()));
    for (const QByteArray &der : certificates) {
        const Certificate certificate = certificateFrom(der);
        if (certificate)
            PEM_write_bio_X509(memory.get(), certificate.get());
    }
    return writtenTo(memory.get());
}

platform::Outcome writeCertificateFile(const QString &path, const QList<QByteArray> &certificates)
{
    const platform::Outcome made = makePrivateFolder(path.left(path.lastIndexOf(u'/')));
    return made ? writePrivateFile(path, pemOf(certificates)) : made;
}

bool certificateAnswersFor(X509 *certificate, const QStringList &hosts)
{
    return std::all_of(hosts.begin(), hosts.end(),
                       [certificate](const QString &host) { return answersFor(certificate, host); });
}

} // namespace toolchain
