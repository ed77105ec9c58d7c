#include "app/startup.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTranslator>

void prepareApplication()
{
    for (const char* variable : {"QT_XCB_GL_INTEGRATION", "QT_WAYLAND_CLIENT_BUFFER_INTEGRATION"}) {
        if (!qEnvironmentVariableIsSet(variable))
            qputenv(variable, QByteArrayLiteral("none"));
    }
    // It would warn at each start that "none" can't be loaded.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.qpa.wayland.warning=false"));
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
