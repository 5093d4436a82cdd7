#include "document/mainwincontroller.h"

#include "app/preferencekeys.h"
#include "platform/clock.h"
#include "platform/preferences.h"
#include "scripting/scriptcommand.h"

using namespace Qt::StringLiterals;

QString MainWinController::logLine(const QString &message) const
{
    return host().clock.now().toString(u"HH:mm:ss.zzz"_s) + u": "_s + message + u'\n';
}

void MainWinController::writeToLogFile(const QString &line)
{
    if (const auto handle = logHandle())
        handle->write(line.toUtf8());
}

void MainWinController::appendToWindowLog(const QString &line, LogStyle style)
{
    statusTextView.append({line, style, attributesFor(style)});
}

void MainWinController::logString(const QString &message, bool isError)
{
    const QString line = logLine(message);
    writeToLogFile(line);
    dispatchToMain(
        [this, line, isError] { appendToWindowLog(line, isError ? LogStyle::error : LogStyle::plain); });
}

void MainWinController::logBoldString(const QString &message)
{
    const QString line = logLine(message);
    writeToLogFile(line);
    dispatchToMain([this, line] { appendToWindowLog(line, LogStyle::bold); });
}

void MainWinController::logStringMain(const QString &message, bool isError)
{
    const QString line = logLine(message);
    writeToLogFile(line);
    appendToWindowLog(line, isError ? LogStyle::error : LogStyle::plain);
}

void MainWinController::logToFile(const QString &message)
{
    writeToLogFile(logLine(message));
}

void MainWinController::closeLog()
{
    const auto handle = logHandle();
    logHandle.set(nullptr);
    if (handle)
        handle->close();
}

void MainWinController::clearLogUnlessKept()
{
    if (!dontClearCheckbox.isOn())
        statusTextView.clear();
}

void MainWinController::contentsOfLog()
{
    if (const auto command = currentCommand())
        command->resumeExecutionWithResult(statusTextView.string());
}

TextAttributes MainWinController::logAttributes() const
{
    return {u"Menlo"_s, static_cast<int>(host().preferences.integer(key::logFontSize)),
            TextAttributes::Colour::text};
}

TextAttributes MainWinController::errorAttributes() const
{
    TextAttributes attributes = logAttributes();
    attributes.colour = TextAttributes::Colour::systemRed;
    return attributes;
}

TextAttributes MainWinController::boldLogAttributes() const
{
    TextAttributes attributes = logAttributes();
    attributes.fontName = u"Menlo-Bold"_s;
    return attributes;
}

TextAttributes MainWinController::italicLogAttributes() const
{
    TextAttributes attributes = logAttributes();
    attributes.fontName = u"Menlo-Italic"_s;
    return attributes;
}

TextAttributes MainWinController::attributesFor(LogStyle style) const
{
    switch (style) {
    case LogStyle::error:
        return errorAttributes();
    case LogStyle::bold:
        return boldLogAttributes();
    case LogStyle::italic:
        return italicLogAttributes();
    case LogStyle::plain:
        break;
    }
    return logAttributes();
}
