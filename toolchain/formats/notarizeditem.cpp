#include "formats/notarizeditem.h"

#include "formats/notarystate.h"
#include "formats/resourceseal.h"
#include "formats/signedimage.h"
#include "formats/statefolder.h"
#include "formats/xar/xarfile.h"

namespace toolchain {

namespace {

class NotarizedBundle : public NotarizedItem {
public:
    explicit NotarizedBundle(Bundle bundle)
        : m_bundle(std::move(bundle))
    {
    }

    QByteArray digest() const override { return sealDigest(m_bundle); }
    std::optional<Ticket> ticket() const override { return readTicket(m_bundle.ticketPath()); }
    QString attach(const Ticket &ticket) override { return writeTicket(m_bundle.ticketPath(), ticket); }

private:
    const Bundle m_bundle;
};

class NotarizedImage : public NotarizedItem {
public:
    explicit NotarizedImage(const QString &path)
        : m_image(path)
    {
    }

    bool isSound() const { return m_image.error().isEmpty() && !m_image.hasForeignSignature(); }
    QByteArray digest() const override { return m_image.sealDigest(); }
    std::optional<Ticket> ticket() const override { return m_image.note().ticket; }
    QString attach(const Ticket &ticket) override
    {
        return m_image.write({m_image.note().signature, ticket});
    }

private:
    const SignedImage m_image;
};

class NotarizedPackage : public NotarizedItem {
public:
    explicit NotarizedPackage(const QString &path)
        : m_package(path)
    {
    }

    bool isSound() const { return m_package.error().isEmpty() && m_package.isPackage(); }
    QByteArray digest() const override { return m_package.sealDigest(); }
    std::optional<Ticket> ticket() const override { return ticketFromJson(m_package.tail()); }
    QString attach(const Ticket &ticket) override { return m_package.writeTail(jsonOf(ticket)); }

private:
    const XarFile m_package;
};

/// Null if it cannot be approved.
template <typename Item>
std::unique_ptr<NotarizedItem> openFile(const QString &path)
{
    auto item = std::make_unique<Item>(path);
    return item->isSound() ? std::move(item) : nullptr;
}

} // namespace

std::unique_ptr<NotarizedItem> openNotarizedItem(const QString &path)
{
    if (auto bundle = readBundle(path))
        return std::make_unique<NotarizedBundle>(std::move(*bundle));
    if (XarFile::looksLikeOne(path))
        return openFile<NotarizedPackage>(path);
    return SignedImage::looksLikeOne(path) ? openFile<NotarizedImage>(path) : nullptr;
}

bool isApproved(const NotarizedItem &item)
{
    const QByteArray digest = item.digest();
    const auto ticket = item.ticket();
    return (ticket && ticket->sealDigest == digest) || NotaryState(notaryFolder()).approvalOf(digest);
}

} // namespace toolchain
