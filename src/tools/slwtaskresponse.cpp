#include "tools/slwtaskresponse.h"

#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

QByteArray bytesOf(const std::shared_ptr<OutputBuffer> &buffer)
{
    return buffer ? (*buffer)() : QByteArray();
}

std::shared_ptr<OutputBuffer> copyOf(const std::shared_ptr<OutputBuffer> &buffer)
{
    return buffer ? std::make_shared<OutputBuffer>((*buffer)()) : nullptr;
}

} // namespace

QString orNull(const QString &text)
{
    return text.isNull() ? u"(null)"_s : text;
}

std::optional<QString> decodedUtf8(const QByteArray &bytes)
{
    // Without a state that waits for more, a character that is cut off at the end is an error too.
    QStringDecoder utf8(QStringDecoder::Utf8,
                        QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QString text = utf8(bytes);
    return utf8.hasError() ? std::nullopt : std::optional(text);
}

QString decodedToolOutput(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return {};
    const auto text = decodedUtf8(bytes);
    return text ? *text : QString::fromLatin1(bytes);
}

QString toolReport(const QString &path, const QString &args, qint64 status, const QString &output,
                   const QString &error)
{
    return u"Result for "_s + orNull(path) + u' ' + orNull(args) + u"\nTermination status: "_s
        + QString::number(status) + u"\nStandardOut: "_s + orNull(output) + u"\nStandardError: "_s
        + orNull(error);
}

SLWTaskResponse::SLWTaskResponse(const QString &toolPath, const QStringList &toolArgs)
    : path(toolPath)
    , args(toolArgs)
{
}

std::shared_ptr<SLWTaskResponse> SLWTaskResponse::responseWithPath(const QString &path,
                                                                   const QStringList &args)
{
    return std::make_shared<SLWTaskResponse>(path, args);
}

QByteArray SLWTaskResponse::outputData() const
{
    return bytesOf(m_output);
}

QByteArray SLWTaskResponse::errorData() const
{
    return bytesOf(m_error);
}

void SLWTaskResponse::setData(std::shared_ptr<OutputBuffer> output, std::shared_ptr<OutputBuffer> error)
{
    m_output = std::move(output);
    m_error = std::move(error);
}

void SLWTaskResponse::keepData()
{
    setData(copyOf(m_output), copyOf(m_error));
}

QString SLWTaskResponse::outputString() const
{
    return decodedToolOutput(outputData());
}

QString SLWTaskResponse::errorString() const
{
    return decodedToolOutput(errorData());
}

QString SLWTaskResponse::text() const
{
    const QString output = outputString();
    return output.isNull() ? errorString() : output;
}

QString SLWTaskResponse::fileLogString() const
{
    const QString arguments = args.join(u' ');
    return toolReport(path, arguments.isNull() ? u""_s : arguments, status(), outputString(), errorString());
}

} // namespace sealwright
