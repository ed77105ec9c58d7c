#pragma once

#include <QObject>
#include <QPointer>
#include <QSize>

class QFocusEvent;
class QMainWindow;
class QScrollBar;
class QWheelEvent;
class QWidget;

/// Moves the central widget of a window under scroll bars while the window shows only a part of it.
///
/// The central widget stays the window's own child; a scroll bar is a sibling, and exists only
/// while its direction needs one. It follows the focus, unless a click set it, and the wheel. Spin
/// boxes and combo boxes keep the wheel only while they have the focus, so scrolling across them
/// changes no value.
class CentralScroller final : public QObject
{
public:
    /// Belongs to @p window, which must have a central widget and neither bars nor docks.
    explicit CentralScroller(QMainWindow& window);

    /// Gives the central widget the size @p content, of which the window shows @p view. Both in
    /// pixels; what @p content is larger than @p view gets a scroll bar.
    void show(QSize content, QSize view);

    /// Follows focus and wheel; takes a wheel that scrolls.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setRange(QPointer<QScrollBar>& bar, Qt::Orientation orientation, int content, int view);
    void place();
    void follow(const QFocusEvent& event, const QWidget& widget);
    void reveal(const QWidget& widget);
    bool isForForm(const QObject& watched, const QWheelEvent& event) const;
    void scroll(QWheelEvent& event);

    // The parent as the part of it that is still there while it is destroyed and children get
    // events.
    QWidget& m_window;
    QPointer<QWidget> m_content;
    QSize m_view;
    QPointer<QScrollBar> m_down;
    QPointer<QScrollBar> m_sideways;
};
