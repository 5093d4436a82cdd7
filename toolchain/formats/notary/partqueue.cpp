#include "formats/notary/partqueue.h"

namespace toolchain::notary {

namespace {

QByteArray partEntry(qsizetype number, const QByteArray &etag)
{
    return "<Part><PartNumber>" + QByteArray::number(number) + "</PartNumber><ETag>"
        + QString::fromUtf8(etag).toHtmlEscaped().toUtf8() + "</ETag></Part>";
}

} // namespace

qsizetype PartQueue::next()
{
    const std::scoped_lock lock(m_mutex);
    if (m_failed || (m_next == m_etags.size() && m_givenBack.isEmpty()))
        return -1;
    return m_next < m_etags.size() ? m_next++ : m_givenBack.takeFirst();
}

void PartQueue::giveBack(qsizetype part)
{
    const std::scoped_lock lock(m_mutex);
    m_givenBack.append(part);
}

void PartQueue::done(qsizetype part, const QByteArray &etag)
{
    const std::scoped_lock lock(m_mutex);
    m_etags[part] = etag;
}

void PartQueue::failed(const HttpReply &reply)
{
    const std::scoped_lock lock(m_mutex);
    if (!m_failed)
        m_failed = reply;
}

bool PartQueue::hasFailed() const
{
    const std::scoped_lock lock(m_mutex);
    return m_failed.has_value();
}

std::optional<HttpReply> PartQueue::failedReply() const
{
    const std::scoped_lock lock(m_mutex);
    return m_failed;
}

QByteArray PartQueue::list() const
{
    const std::scoped_lock lock(m_mutex);
    QByteArray entries;
    for (qsizetype part = 0; part < m_etags.size(); ++part)
        entries += partEntry(part + 1, m_etags.at(part));
    return "<CompleteMultipartUpload xmlns=\"http://s3.amazonaws.com/doc/2006-03-01/\">" + entries
        + "</CompleteMultipartUpload>";
}

} // namespace toolchain::notary
