#include "ui/centralscroller.h"

#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QFocusEvent>
#include <QMainWindow>
#include <QScrollBar>
#include <QWheelEvent>
#include <QWindow>

#include <algorithm>

namespace {

// The value that shows as much as possible of what lies between two places, its start above all.
void reveal(QScrollBar* bar, int first, int last)
{
    if (bar == nullptr)
        return;
    const int shown = std::max(bar->value(), last - bar->pageStep());
    bar->setValue(std::min(shown, first));
}

bool isField(const QWidget& widget)
{
    return qobject_cast<const QAbstractSpinBox*>(&widget) != nullptr ||
           qobject_cast<const QComboBox*>(&widget) != nullptr;
}

// The widget that does something of its own with a wheel that turns over @p widget, or null.
const QWidget* wheelTaker(const QWidget* widget)
{
    while (widget != nullptr && !isField(*widget) &&
           qobject_cast<const QAbstractScrollArea*>(widget) == nullptr &&
           qobject_cast<const QScrollBar*>(widget) == nullptr)
        widget = widget->isWindow() ? nullptr : widget->parentWidget();
    return widget;
}

} // namespace

CentralScroller::CentralScroller(QMainWindow& window)
    : QObject(&window)
    , m_window(window)
    , m_content(window.centralWidget())
{}

void CentralScroller::show(QSize content, QSize view)
{
    m_view = view;
    setRange(m_sideways, Qt::Horizontal, content.width(), view.width());
    setRange(m_down, Qt::Vertical, content.height(), view.height());
    // Only the application sees what the wheel does before a field gets it and the focus with it.
    qApp->removeEventFilter(this);
    const bool scrolls = m_sideways != nullptr || m_down != nullptr;
    if (scrolls)
        qApp->installEventFilter(this);
    // Keeps the window's own layout from making it as small as the window.
    m_content->setMinimumSize(scrolls ? content : QSize(0, 0));
    m_content->resize(content);
    place();
}

void CentralScroller::setRange(QPointer<QScrollBar>& bar, Qt::Orientation orientation, int content,
                               int view)
{
    if (content <= view) {
        delete bar;
        return;
    }
    if (bar == nullptr) {
        bar = new QScrollBar(orientation, &m_window);
        connect(bar, &QScrollBar::valueChanged, this, &CentralScroller::place);
        bar->show();
    }
    bar->setSingleStep(m_window.fontMetrics().lineSpacing());
    bar->setPageStep(view);
    bar->setRange(0, content - view);
}

void CentralScroller::place()
{
    m_content->move(m_sideways != nullptr ? -m_sideways->value() : 0,
                    m_down != nullptr ? -m_down->value() : 0);
    // The central widget reaches under both bars, and so into the corner between them: one of them
    // covers it.
    if (m_sideways != nullptr) {
        m_sideways->setGeometry(0, m_view.height(), m_window.width(),
                                m_window.height() - m_view.height());
        m_sideways->raise();
    }
    if (m_down != nullptr) {
        m_down->setGeometry(m_view.width(), 0, m_window.width() - m_view.width(), m_view.height());
        m_down->raise();
    }
}

bool CentralScroller::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn && watched->isWidgetType()) {
        follow(dynamic_cast<QFocusEvent&>(*event), dynamic_cast<QWidget&>(*watched));
    } else if (event->type() == QEvent::Move && watched == m_content) {
        place(); // The window's own layout has put it back to where it would be without scroll
                 // bars.
    } else if (event->type() == QEvent::Wheel &&
               isForForm(*watched, dynamic_cast<QWheelEvent&>(*event))) {
        scroll(dynamic_cast<QWheelEvent&>(*event));
        return true;
    }
    return QObject::eventFilter(watched, event);
}

// A click does not need it, and a button that moves away between press and release is not clicked.
void CentralScroller::follow(const QFocusEvent& event, const QWidget& widget)
{
    const bool clicked = event.reason() == Qt::MouseFocusReason;
    const bool isBack =
        event.reason() == Qt::ActiveWindowFocusReason || event.reason() == Qt::PopupFocusReason;
    if (!clicked && !isBack && m_content != nullptr && m_content->isAncestorOf(&widget))
        reveal(widget);
}

void CentralScroller::reveal(const QWidget& widget)
{
    constexpr int margin = 8;
    const QRect place = QRect(widget.mapTo(m_content, QPoint()), widget.size())
                            .marginsAdded({margin, margin, margin, margin});
    ::reveal(m_sideways, place.left(), place.right() + 1);
    ::reveal(m_down, place.top(), place.bottom() + 1);
}

// The wheel comes to the window's handle first, before it gives its focus to a field, then to the
// widget under the mouse, and from there up to the window until one takes it.
bool CentralScroller::isForForm(const QObject& watched, const QWheelEvent& event) const
{
    const auto* widget = qobject_cast<const QWidget*>(&watched);
    if (widget != nullptr)
        return widget->window() == &m_window && wheelTaker(widget) == nullptr;
    if (&watched != m_window.windowHandle())
        return false;
    const QWidget* taker = wheelTaker(m_window.childAt(event.position().toPoint()));
    return taker != nullptr && isField(*taker) && !taker->hasFocus();
}

void CentralScroller::scroll(QWheelEvent& event)
{
    const QPoint delta = event.angleDelta();
    QScrollBar* bar = qAbs(delta.x()) > qAbs(delta.y()) ? m_sideways : m_down;
    // A bar at its end takes no event; Qt tells nobody else of one that was passed on.
    if (bar != nullptr)
        QCoreApplication::sendEvent(bar, &event);
}
