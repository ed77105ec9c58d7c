#include "ui/fittexts.h"

#include "ui/centralscroller.h"
#include "ui/columns.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QCoreApplication>
#include <QEvent>
#include <QMainWindow>
#include <QScreen>
#include <QStyle>
#include <QWindow>

#include <algorithm>

namespace {

// A combo box in other letters keeps the least size of the old ones, and would be cut; it forgets
// both sizes with a style. The children of a window have its new font before the window tells.
void forgetSizesOfCombos(const QMainWindow& window)
{
    for (QComboBox* combo : window.findChildren<QComboBox*>()) {
        QEvent change(QEvent::StyleChange);
        QCoreApplication::sendEvent(combo, &change);
    }
}

class TextFitter final : public QObject
{
public:
    explicit TextFitter(QMainWindow& window);
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void open();
    void resizeToOpen();
    int widerWidth(int least, QSize most) const;
    void followScreen(QScreen* screen);
    void changeScreen(QScreen* screen);
    void noticeFrame();
    void shrinkIntoScreen();
    void moveIntoScreen();
    void follow();
    void setLeastHeight(int height);
    void arrange(QSize window);

    int leastWindowHeight(int width) const;
    int scrollBarExtent() const;
    bool fillsScreen() const;
    QSize available() const;

    QMainWindow& m_window;
    Columns m_columns;
    CentralScroller& m_scroller;
    QMetaObject::Connection m_screenChanges;
    QMargins m_frame;
    QSize m_firstSize;   ///< before the window was shown
    QSize m_openingSize; ///< what that became
    bool m_open = false;
};

TextFitter::TextFitter(QMainWindow& window)
    : QObject(&window)
    , m_window(window)
    , m_columns(*qobject_cast<QBoxLayout*>(window.centralWidget()->layout()))
    , m_scroller(*new CentralScroller(window))
{
    // The main window's own layout knows neither of wrapped lines nor of the screen's size: it
    // would demand too little on large screens, and too much on small ones.
    window.layout()->setSizeConstraint(QLayout::SetNoConstraint);
    window.installEventFilter(this);
    window.centralWidget()->installEventFilter(this);
}

// The layouts have had each event before this filter.
bool TextFitter::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    const bool changesSizes = type == QEvent::Resize || type == QEvent::LayoutRequest;
    if (watched != &m_window) {
        if (m_open && changesSizes)
            m_columns.layOut();
    } else if (!m_open) {
        // A window is polished with a native window only on its way to the screen; what happens now
        // spares it a first layout in a size that nobody sees.
        const bool isComing =
            type == QEvent::Polish && m_window.testAttribute(Qt::WA_WState_Created);
        if (isComing || type == QEvent::Show)
            open();
    } else {
        if (type == QEvent::FontChange)
            forgetSizesOfCombos(m_window);
        if (type == QEvent::Resize || type == QEvent::Move)
            noticeFrame();
        if (changesSizes)
            follow();
    }
    return QObject::eventFilter(watched, event);
}

// Before the window is on the screen, so nobody sees it grow.
void TextFitter::open()
{
    m_open = true;
    const QWindow* handle = m_window.windowHandle();
    connect(handle, &QWindow::screenChanged, this, &TextFitter::changeScreen);
    m_firstSize = m_window.size();
    m_frame = handle->frameMargins(); // what is known of it so far
    resizeToOpen();
    followScreen(handle->screen());
}

void TextFitter::resizeToOpen()
{
    if (fillsScreen()) {
        follow();
        return;
    }
    const QSize most = available();
    const int preferred = std::min(m_columns.preferredWidth(), most.width());
    int width = std::max(m_firstSize.width(), preferred);
    int height = leastWindowHeight(width);
    if (width < most.width() && height > most.height()) {
        width = widerWidth(width, most);
        height = leastWindowHeight(width);
    }
    m_openingSize = QSize(width, std::max(m_firstSize.height(), height)).boundedTo(most);
    // First what it will show: the form is laid out once, and not for the window's size as well.
    arrange(m_openingSize);
    m_window.resize(m_openingSize);
    setLeastHeight(height);
}

// As narrow as the texts allow in the height that there is. If no width is enough for that, as
// narrow as the least height allows that any width gives.
int TextFitter::widerWidth(int least, QSize most) const
{
    const bool scrolls = leastWindowHeight(most.width()) > most.height();
    const int bar = scrolls ? scrollBarExtent() : 0;
    int enough = std::max(least, most.width() - bar);
    const int height = std::max(most.height(), leastWindowHeight(enough));
    while (least < enough) {
        const int middle = (least + enough) / 2;
        if (leastWindowHeight(middle) <= height)
            enough = middle;
        else
            least = middle + 1;
    }
    return enough + bar;
}

void TextFitter::followScreen(QScreen* screen)
{
    disconnect(m_screenChanges);
    if (screen != nullptr)
        m_screenChanges = connect(screen, &QScreen::availableGeometryChanged, this, [this] {
            shrinkIntoScreen();
            moveIntoScreen();
        });
}

// A caller that moves the window to another screen also places it.
void TextFitter::changeScreen(QScreen* screen)
{
    followScreen(screen);
    shrinkIntoScreen();
}

// The window manager puts its frame around the window some time after that was shown.
void TextFitter::noticeFrame()
{
    const QMargins frame = m_window.windowHandle()->frameMargins();
    if (frame == m_frame)
        return;
    m_frame = frame;
    if (m_window.size() == m_openingSize)
        resizeToOpen();
    shrinkIntoScreen();
    moveIntoScreen();
}

void TextFitter::shrinkIntoScreen()
{
    follow();
    if (!fillsScreen())
        m_window.resize(m_window.size().boundedTo(available()));
}

void TextFitter::moveIntoScreen()
{
    const QRect screen = m_window.screen()->availableGeometry();
    const QRect frame = m_window.frameGeometry();
    if (fillsScreen() || screen.contains(frame))
        return;
    const QPoint last = screen.bottomRight() - QPoint(frame.width() - 1, frame.height() - 1);
    m_window.move(std::max(screen.left(), std::min(frame.left(), last.x())),
                  std::max(screen.top(), std::min(frame.top(), last.y())));
}

// Growing the least height also resizes a window that is smaller, and so comes back here at once,
// to find nothing more to grow.
void TextFitter::follow()
{
    setLeastHeight(leastWindowHeight(m_window.width()));
    arrange(m_window.size());
}

void TextFitter::setLeastHeight(int height)
{
    m_window.setMinimumHeight(std::min(height, available().height()));
}

// The scroll bar of one direction takes from the other, which may then need one as well.
void TextFitter::arrange(QSize window)
{
    const int bar = scrollBarExtent();
    QSize view;
    QSize content;
    for (const int taken : {0, bar}) {
        view = window - QSize(taken, 0);
        content.setWidth(m_columns.enoughWidth(view.width()));
        if (view.width() < content.width())
            view.rheight() -= bar;
        content.setHeight(std::max(view.height(), m_columns.leastHeight(content.width())));
        if (content.height() == view.height())
            break;
    }
    m_scroller.show(content, view);
}

int TextFitter::leastWindowHeight(int width) const
{
    const int enough = m_columns.enoughWidth(width);
    return m_columns.leastHeight(enough) + (enough > width ? scrollBarExtent() : 0);
}

int TextFitter::scrollBarExtent() const
{
    return m_window.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &m_window);
}

bool TextFitter::fillsScreen() const
{
    return m_window.isMaximized() || m_window.isFullScreen();
}

// The part of the screen inside the window manager's frame.
QSize TextFitter::available() const
{
    return m_window.screen()->availableGeometry().marginsRemoved(m_frame).size();
}

} // namespace

void fitTexts(QMainWindow& window)
{
    new TextFitter(window); // the window's child
}
