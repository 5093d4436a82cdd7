#include "ui/language.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

using namespace Qt::StringLiterals;

namespace sealwright {

void language::use(const QLocale &locale, const QString &folder)
{
    auto *const own = new QTranslator(qApp);
    if (!own->load(locale, u"sealwright"_s, u"_"_s, folder)) {
        delete own; // or Qt's buttons would speak another language than ours
        return;
    }
    auto *const qts = new QTranslator(qApp);
    if (qts->load(locale, u"qtbase"_s, u"_"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(qts);
    QCoreApplication::installTranslator(own);
}

} // namespace sealwright
