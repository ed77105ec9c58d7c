#pragma once

#include <QApplication>
#include <QEvent>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>
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

/// How many OpenGL drivers this process has loaded.
inline int openGlDrivers()
{
    std::ifstream maps("/proc/self/maps");
    std::set<std::string> drivers;
    for (std::string line; std::getline(maps, line);) {
        const auto name = line.rfind('/');
        if (name != std::string::npos && line.find("_dri.so", name) != std::string::npos)
            drivers.insert(line.substr(name));
    }
    return static_cast<int>(drivers.size());
}

/// Ends the program when the window has been painted for the first time, and prints its peak
/// memory, its size and the OpenGL drivers that it has loaded. Nothing is torn down: what is
/// measured is the start.
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
        std::printf("memory\t%d\npixels\t%d\nwidth\t%d\nheight\t%d\ndrivers\t%d\n", peakMemoryKib(),
                    m_window.width() * m_window.height(), m_window.width(), m_window.height(),
                    openGlDrivers());
        std::fflush(stdout);
        std::_Exit(EXIT_SUCCESS);
    }

    QWidget& m_window;
};
