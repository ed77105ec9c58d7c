#include "app/startup.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QTranslator>

void prepareApplication()
{
    const char* const variable = "QT_XCB_GL_INTEGRATION";
    if (!qEnvironmentVariableIsSet(variable))
        qputenv(variable, QByteArrayLiteral("none"));
}

void installTranslation(const QLocale& locale, const QString& folder)
{
    auto* const translator = new QTranslator(QCoreApplication::instance());
    for (QString language : locale.uiLanguages()) {
        const bool isEnglish = QLocale(language).language() == QLocale::English;
        language.replace('-', '_');
        if (isEnglish || translator->load("twdiskprobe_" + language, folder))
            break;
    }
    if (translator->isEmpty())
        delete translator;
    else
        QCoreApplication::installTranslator(translator);
}
