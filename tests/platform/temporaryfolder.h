#pragma once

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>

/// A folder of the test's own, and short ways to look into it.
class TemporaryFolder {
public:
    QString path() const { return m_folder.path(); }
    QString path(const QString &name) const { return m_folder.filePath(name); }

    /// A file with these contents; its path.
    QString file(const QString &name, const QByteArray &contents = {}) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(contents), contents.size());
        return path(name);
    }

    QString folder(const QString &name) const
    {
        EXPECT_TRUE(QDir().mkpath(path(name)));
        return path(name);
    }

    /// A named pipe, by which test and child wait for each other.
    QString fifo(const QString &name) const
    {
        EXPECT_EQ(mkfifo(QFile::encodeName(path(name)).constData(), 0600), 0);
        return path(name);
    }

    QString link(const QString &name, const QString &destination) const
    {
        EXPECT_TRUE(QFile::link(destination, path(name)));
        return path(name);
    }

private:
    QTemporaryDir m_folder;
};

/// The contents of a file; of a pipe, all that is written to it.
inline QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

/// Lets go whoever reads from the pipe.
inline void release(const QString &fifo)
{
    QFile file(fifo);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    EXPECT_EQ(file.write("\n"), 1);
}

inline struct stat stateOf(const QString &path)
{
    struct stat state { };
    EXPECT_EQ(lstat(QFile::encodeName(path).constData(), &state), 0) << path.toStdString();
    return state;
}
