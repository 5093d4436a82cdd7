#include "formats/keychain/passphrase.h"

#include <QFile>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using platform::Error;
using platform::Result;

namespace toolchain {

namespace {

constexpr qint64 mostBytes = 1 << 16;

QByteArray firstLineOf(const QByteArray &bytes)
{
    const qsizetype end = bytes.indexOf('\n');
    const QByteArray line = end < 0 ? bytes : bytes.left(end);
    return line.endsWith('\r') ? line.chopped(1) : line;
}

QByteArray lineFrom(int descriptor)
{
    QByteArray line;
    char byte = 0;
    while (line.size() < mostBytes && read(descriptor, &byte, 1) == 1 && byte != '\n')
        line.append(byte);
    return line;
}

/// The terminal of the session, which does not show what is typed as long as this lives.
class SilentTerminal {
public:
    SilentTerminal()
        : m_descriptor(open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY))
    {
        if (m_descriptor < 0 || tcgetattr(m_descriptor, &m_before) != 0)
            return;
        termios silent = m_before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        m_isSilent = tcsetattr(m_descriptor, TCSAFLUSH, &silent) == 0;
    }
    ~SilentTerminal()
    {
        if (m_isSilent)
            tcsetattr(m_descriptor, TCSAFLUSH, &m_before);
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    SilentTerminal(const SilentTerminal &) = delete;
    SilentTerminal &operator=(const SilentTerminal &) = delete;

    [[nodiscard]] bool isSilent() const { return m_isSilent; }
    void show(const QByteArray &text) const
    {
        static_cast<void>(!write(m_descriptor, text.constData(), static_cast<size_t>(text.size())));
    }
    [[nodiscard]] QByteArray readLine() const { return lineFrom(m_descriptor); }

private:
    int m_descriptor = -1;
    termios m_before = {};
    bool m_isSilent = false;
};

QString credentialFile()
{
    const QString folder = qEnvironmentVariable("CREDENTIALS_DIRECTORY");
    const QString file = folder + u"/sealwright-keychain"_s;
    return !folder.isEmpty() && QFile::exists(file) ? file : QString();
}

} // namespace

Result<QByteArray> passphraseFromFile(const QString &name)
{
    QByteArray passphrase;
    if (name == u"-"_s) {
        passphrase = firstLineOf(lineFrom(STDIN_FILENO));
    } else {
        QFile file(name);
        if (!file.open(QIODevice::ReadOnly))
            return Error{name + u": "_s + file.errorString()};
        passphrase = firstLineOf(file.read(mostBytes));
    }
    if (passphrase.isEmpty())
        return Error{(name == u"-"_s ? u"standard input"_s : name) + u": holds no passphrase"_s};
    return passphrase;
}

Result<QByteArray> askPassphrase(const QString &question)
{
    const SilentTerminal terminal;
    if (!terminal.isSilent())
        return Error{
            u"there is no terminal to ask for the passphrase; --passphrase-file names a file with it"_s};
    terminal.show(question.toUtf8() + ' ');
    const QByteArray passphrase = terminal.readLine();
    terminal.show("\n");
    return passphrase;
}

Result<QByteArray> passphraseFrom(const QString &file, const QString &question)
{
    if (!file.isEmpty())
        return passphraseFromFile(file);
    const QString credential = credentialFile();
    return credential.isEmpty() ? askPassphrase(question) : passphraseFromFile(credential);
}

} // namespace toolchain
