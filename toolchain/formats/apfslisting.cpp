#include "formats/apfslisting.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace toolchain {

void ApfsListing::take(QByteArrayView bytes)
{
    constexpr qsizetype longestLine = 1 << 20;
    m_rest += bytes;
    qsizetype from = 0;
    for (qsizetype end = m_rest.indexOf('\n'); end >= 0; end = m_rest.indexOf('\n', from)) {
        takeLine(QByteArrayView(m_rest).sliced(from, end - from));
        from = end + 1;
    }
    m_rest.remove(0, m_rest.size() - from > longestLine ? m_rest.size() : from);
}

void ApfsListing::finish()
{
    takeLine(m_rest);
    m_rest.clear();
    takeItem();
}

void ApfsListing::takeLine(QByteArrayView line)
{
    if (line.isEmpty())
        return takeItem();
    if (line.startsWith("----------"))
        m_isPastHead = true;
    constexpr QByteArrayView name("volume_name: ");
    if (!m_isPastHead && line.startsWith(name))
        m_volumeName = QString::fromUtf8(line.sliced(name.size())).trimmed();
    constexpr QByteArrayView separator(" = ");
    const qsizetype at = line.indexOf(separator);
    if (m_isPastHead && at > 0)
        takeProperty(line.first(at), line.sliced(at + separator.size()));
}

void ApfsListing::takeProperty(QByteArrayView key, QByteArrayView value)
{
    if (key == "Path")
        m_item.path = QString::fromUtf8(value);
    else if (key == "Mode")
        m_item.mode = value.toByteArray();
    else if (key == "Method")
        m_item.method = value.toByteArray();
    else if (key == "Size")
        m_item.size = value.toByteArray();
    else if (key == "Written Size")
        m_item.writtenSize = value.toByteArray();
    else if (key == "Alternate Stream")
        m_item.isAttribute = value == "+";
}

void ApfsListing::takeItem()
{
    countItem();
    const bool isCompressed = m_item.method.contains("-attr") || m_item.method.contains("-rsrc");
    if (m_item.isAttribute)
        m_attributes.append(m_item.path);
    else if (isCompressed && m_item.size != m_item.writtenSize)
        fail(u"compressed by the file system, which cannot be read here"_s);
    else if (!m_item.mode.isEmpty() && !QByteArrayView("-dl").contains(m_item.mode.front()))
        fail(u"neither a file, a folder nor a symbolic link"_s);
    m_item = {};
}

void ApfsListing::countItem()
{
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    if (m_item.path.isEmpty())
        return;
    ++m_count;
    bool isNumber = false;
    const qint64 size = m_item.size.toLongLong(&isNumber);
    if (isNumber && size > 0)
        m_size = size > most - m_size ? most : m_size + size;
    else if (!isNumber && !m_item.size.isEmpty())
        m_size = most;
}

void ApfsListing::fail(const QString &reason)
{
    if (m_problem.isEmpty())
        m_problem = m_item.path + u": "_s + reason;
}

} // namespace toolchain
