#pragma once

#include <QStringList>
#include <QtGlobal>

/// Collects what Qt writes to standard error while it lives: a slot name that binds to nothing, or
/// a connection that fails, shows there and nowhere else.
class WarningCollector
{
public:
    WarningCollector()
    {
        current() = this;
        m_previous = qInstallMessageHandler(&WarningCollector::collect);
    }
    ~WarningCollector()
    {
        qInstallMessageHandler(m_previous);
        current() = nullptr;
    }
    Q_DISABLE_COPY_MOVE(WarningCollector)

    QStringList messages() const { return m_messages; }

private:
    static WarningCollector*& current()
    {
        static WarningCollector* instance = nullptr;
        return instance;
    }

    static void collect(QtMsgType type, const QMessageLogContext& context, const QString& message)
    {
        // Warnings of the offscreen platform about a top-level window's size, order and grabs.
        if (message.startsWith(QLatin1String("This plugin does not support ")))
            return;
        if (type != QtDebugMsg && type != QtInfoMsg)
            current()->m_messages += message;
        if (current()->m_previous != nullptr)
            current()->m_previous(type, context, message);
    }

    QtMessageHandler m_previous = nullptr;
    QStringList m_messages;
};
