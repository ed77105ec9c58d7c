#pragma once

#include <QApplication>
#include <QEvent>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

/// The largest memory of this process so far, in KiB, as the system counts it.
inline int peakMemoryKib()
{
    std::ifstream status("/proc/self/status");
    const std::string label = "VmHWM:";
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, label.size(), label) == 0)
            return std::stoi(line.substr(label.size()));
    }
    return 0;
}

/// Ends the program when the window has been painted for the first time, and prints its peak memory
/// and how much it had to paint. Nothing is torn down: what is measured is the start.
class FirstPaint : public QObject
{
public:
    explicit FirstPaint(QWidget& window)
        : QObject(&window)
        , m_window(window)
    {
        window.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        // The window paints itself first and its children after it, all before the next event.
        if (event->type() == QEvent::Paint)
            QMetaObject::invokeMethod(
                this, [this] { end(); }, Qt::QueuedConnection);
        return QObject::eventFilter(watched, event);
    }

private:
    void end() const
    {
        std::printf("memory\t%d\npixels\t%d\n", peakMemoryKib(),
                    m_window.width() * m_window.height());
        std::fflush(stdout);
        std::_Exit(EXIT_SUCCESS);
    }

    QWidget& m_window;
};
