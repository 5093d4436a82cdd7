// Writes the reference of what scripts can reach into the document that is named.

#include "scripting/definition/reference.h"

#include <QFile>

#include <cstdio>

using namespace sealwright;

int main(int count, char **arguments)
{
    QFile file(count == 2 ? QString::fromLocal8Bit(arguments[1]) : QString());
    if (!file.open(QIODevice::ReadWrite)) {
        std::fputs("usage: updatereference DOCUMENT\n", stderr);
        return 2;
    }
    const QString updated = withScriptingReference(QString::fromUtf8(file.readAll()));
    if (updated.isNull()) {
        std::fputs("updatereference: the document has no place for the reference\n", stderr);
        return 1;
    }
    return file.resize(0) && file.seek(0) && file.write(updated.toUtf8()) >= 0 ? 0 : 1;
}
