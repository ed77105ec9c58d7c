#include "app/startup.h"

#include <QByteArray>

void prepareApplication()
{
    const char* const variable = "QT_XCB_GL_INTEGRATION";
    if (!qEnvironmentVariableIsSet(variable))
        qputenv(variable, QByteArrayLiteral("none"));
}
