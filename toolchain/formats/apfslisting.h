#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace toolchain {

/// What 7z tells of an APFS volume by `l -slt`, taken in piece by piece: one block of lines "KEY = VALUE" an
/// item. A large volume has hundreds of thousands of them; what is kept is little.
class ApfsListing {
public:
    void take(QByteArrayView bytes);

    /// After the last bytes.
    void finish();

    /// Empty if there is no volume.
    [[nodiscard]] QString volumeName() const { return m_volumeName; }

    /// The first item that 7z does not copy as it is, and why; empty if there is none.
    [[nodiscard]] QString problem() const { return m_problem; }

    /// The paths FILE:NAME, relative to the volume, of extended attributes, for which 7z makes files.
    [[nodiscard]] QStringList attributes() const { return m_attributes; }

    [[nodiscard]] qint64 count() const { return m_count; } ///< of all items
    [[nodiscard]] qint64 size() const { return m_size; } ///< of all of them, bytes, once they are unpacked

private:
    struct Item {
        QString path;
        QByteArray mode;
        QByteArray method;
        QByteArray size;
        QByteArray writtenSize; ///< of what the file system has compressed: what it was before
        bool isAttribute = false;
    };

    void takeLine(QByteArrayView line);
    void takeProperty(QByteArrayView key, QByteArrayView value);
    void takeItem();
    void countItem();
    void fail(const QString &reason);

    QByteArray m_rest; ///< of the bytes behind the last whole line
    Item m_item;
    QString m_volumeName;
    QString m_problem;
    QStringList m_attributes;
    qint64 m_count = 0;
    qint64 m_size = 0;
    bool m_isPastHead = false;
};

} // namespace toolchain
