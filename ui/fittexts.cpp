#include "ui/fittexts.h"

#include <QEvent>
#include <QLayout>
#include <QMainWindow>
#include <QScreen>
#include <QStyle>
#include <QWindow>

#include <algorithm>

namespace {

// The height below which a column would cut texts, at the width that it has now. Asking the row
// instead would count what may shrink, such as spacers and tables, at its preferred height.
int leastHeight(const QLayoutItem& column)
{
    return column.hasHeightForWidth() ? column.minimumHeightForWidth(column.geometry().width())
                                      : column.minimumSize().height();
}

int leastRowHeight(const QLayout& row)
{
    int height = 0;
    for (int i = 0; i < row.count(); ++i)
        height = std::max(height, leastHeight(*row.itemAt(i)));
    const QMargins margins = row.contentsMargins();
    return margins.top() + height + margins.bottom();
}

class TextFitter final : public QObject
{
public:
    explicit TextFitter(QMainWindow& window);
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void open();
    void follow();
    QSize available() const;

    QMainWindow& m_window;
    QLayout& m_row;
    bool m_open = false;
};

TextFitter::TextFitter(QMainWindow& window)
    : QObject(&window)
    , m_window(window)
    , m_row(*window.centralWidget()->layout())
{
    // The main window's own layout knows neither of wrapped lines nor of the screen's size: it
    // would demand too little on large screens, and too much on small ones.
    window.layout()->setSizeConstraint(QLayout::SetNoConstraint);
    window.installEventFilter(this);
}

bool TextFitter::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && !m_open)
        open();
    else if (m_open && (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest))
        follow();
    return QObject::eventFilter(watched, event);
}

// The show event comes before the window is on the screen, so nobody sees it grow.
void TextFitter::open()
{
    m_open = true;
    connect(m_window.windowHandle(), &QWindow::screenChanged, this, &TextFitter::follow);
    follow();
    if (m_window.isMaximized() || m_window.isFullScreen())
        return;
    // On a low screen the texts may still fit into a wider window, where they wrap less.
    constexpr int step = 20;
    const QSize room = available();
    for (int width = m_window.width() + step;
         width <= room.width() && leastRowHeight(m_row) > room.height(); width += step)
        m_window.resize(width, m_window.height());
}

// The layouts have had the event before this filter, so the columns have their new widths. Growing
// the least size also resizes a window that is smaller, and so comes back here at once, to find
// nothing more to grow.
void TextFitter::follow()
{
    // Below its size hint a layout takes room from texts that cannot wrap. Its minimum size does
    // not tell: a group box with a minimum width of its own hides there what its texts need.
    m_window.setMinimumWidth(std::min(m_row.sizeHint().width(), available().width()));
    m_window.setMinimumHeight(std::min(leastRowHeight(m_row), available().height()));
}

// What the window manager's frame leaves of the screen. The frame is known only some time after the
// window was shown; until then a title bar as the style has it stands for it.
QSize TextFitter::available() const
{
    const QSize frame = m_window.frameGeometry().size() - m_window.size();
    const int titleBar = m_window.style()->pixelMetric(QStyle::PM_TitleBarHeight);
    return m_window.screen()->availableGeometry().size() -
           QSize(frame.width(), std::max(frame.height(), titleBar));
}

} // namespace

void fitTexts(QMainWindow& window)
{
    new TextFitter(window); // the window's child
}
