#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QFontMetrics>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QRadioButton>
#include <QScreen>
#include <QScrollBar>
#include <QSpinBox>
#include <QStyleOption>
#include <QVector>
#include <QWindow>

// Measures whether the texts of a shown window fit, from the rectangles that its widgets would
// paint.

inline QSize textSize(const QWidget& widget, const QString& text, int width, int flags)
{
    const QFontMetrics metrics = widget.fontMetrics();
    QSize size = metrics.boundingRect(QRect(0, 0, width, QWIDGETSIZE_MAX), flags, text).size();
    // A single line may lose the blank rows above and below its letters.
    if (size.height() <= metrics.height())
        size.setHeight(metrics.tightBoundingRect(text).height());
    return size;
}

inline bool holds(const QRect& space, const QSize& needed)
{
    return needed.width() <= space.width() && needed.height() <= space.height();
}

inline bool showsItsText(const QLabel& label)
{
    const int margin = label.margin();
    const QRect space =
        label.contentsRect().adjusted(margin + qMax(label.indent(), 0), margin, -margin, -margin);
    const int flags = label.wordWrap() ? Qt::TextWordWrap : 0;
    return holds(space, textSize(label, label.text(), space.width(), flags));
}

inline bool showsItsText(const QAbstractButton& button)
{
    QStyleOptionButton option;
    option.initFrom(&button);
    option.text = button.text();
    const auto contents = qobject_cast<const QCheckBox*>(&button) ? QStyle::SE_CheckBoxContents
                          : qobject_cast<const QRadioButton*>(&button)
                              ? QStyle::SE_RadioButtonContents
                              : QStyle::SE_PushButtonContents;
    const QRect space = button.style()->subElementRect(contents, &option, &button);
    return holds(space, textSize(button, button.text(), QWIDGETSIZE_MAX, Qt::TextShowMnemonic));
}

inline bool showsItsText(const QGroupBox& box)
{
    QStyleOptionGroupBox option;
    option.initFrom(&box);
    option.text = box.title();
    option.subControls = QStyle::SC_GroupBoxLabel | QStyle::SC_GroupBoxFrame;
    const QRect title =
        box.style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel, &box);
    const int width = box.fontMetrics().horizontalAdvance(box.title());
    return box.title().isEmpty() || (box.rect().contains(title) && width <= box.width());
}

inline bool showsItsText(const QComboBox& combo)
{
    QStyleOptionComboBox option;
    option.initFrom(&combo);
    option.subControls = QStyle::SC_All;
    const QRect space = combo.style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                      QStyle::SC_ComboBoxEditField, &combo);
    for (int i = 0; i < combo.count(); ++i) {
        // As wide as the letters: the box is made for them, or for the rounded advance of the text,
        // as its version does.
        QSize size = textSize(combo, combo.itemText(i), QWIDGETSIZE_MAX, 0);
        size.setWidth(combo.fontMetrics().boundingRect(combo.itemText(i)).right() + 1);
        if (!holds(space, size))
            return false;
    }
    return true;
}

inline bool showsItsText(const QWidget& widget)
{
    if (const auto* label = qobject_cast<const QLabel*>(&widget))
        return showsItsText(*label);
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget))
        return showsItsText(*button);
    if (const auto* box = qobject_cast<const QGroupBox*>(&widget))
        return showsItsText(*box);
    if (const auto* combo = qobject_cast<const QComboBox*>(&widget))
        return showsItsText(*combo);
    if (qobject_cast<const QSpinBox*>(&widget) || qobject_cast<const QLineEdit*>(&widget))
        return widget.height() >= widget.minimumSizeHint().height() &&
               widget.width() >= widget.minimumSizeHint().width();
    return true;
}

/// The central widget is the last that counts: the window may scroll across it.
inline bool reachesOutOfAParent(const QWidget& widget, const QWidget* centralWidget)
{
    const QWidget* parent = &widget;
    while (parent != centralWidget) {
        parent = parent->parentWidget();
        if (!parent->rect().contains(QRect(widget.mapTo(parent, {}), widget.size())))
            return true;
    }
    return false;
}

inline QVector<const QWidget*> shownWidgets(const QMainWindow& window)
{
    QVector<const QWidget*> widgets;
    for (const QWidget* widget : window.centralWidget()->findChildren<QWidget*>())
        if (widget->isVisible() && !widget->objectName().isEmpty() &&
            !widget->objectName().startsWith("qt_"))
            widgets += widget;
    return widgets;
}

/// True if the form itself keeps the widget from growing: such limits are in pixels, whatever the
/// font is, so how much of the text they leave depends on the machine's fonts.
inline bool isAtItsLimit(const QWidget& widget)
{
    return widget.width() == widget.maximumWidth() || widget.height() == widget.maximumHeight();
}

/// The faults of the window's texts; empty if every text is whole.
inline QStringList cutTexts(const QMainWindow& window)
{
    QStringList faults;
    const auto widgets = shownWidgets(window);
    for (const QWidget* widget : widgets) {
        if (!showsItsText(*widget) && !isAtItsLimit(*widget))
            faults += widget->objectName() + " is cut";
        if (reachesOutOfAParent(*widget, window.centralWidget()))
            faults += widget->objectName() + " reaches out";
        for (const QWidget* other : widgets)
            if (widget < other && widget->parent() == other->parent() &&
                widget->geometry().intersects(other->geometry()))
                faults += widget->objectName() + " overlaps " + other->objectName();
    }
    return faults;
}

/// The largest size at which a shown window lies within its screen.
inline QSize available(const QMainWindow& window)
{
    const QRect screen = window.screen()->availableGeometry();
    return screen.marginsRemoved(window.windowHandle()->frameMargins()).size();
}

/// The scroll bar that moves the central widget, or null while the window shows all of it.
inline QScrollBar* scrollBar(const QMainWindow& window, Qt::Orientation orientation)
{
    for (auto* bar : window.findChildren<QScrollBar*>(QString(), Qt::FindDirectChildrenOnly))
        if (bar->orientation() == orientation)
            return bar;
    return nullptr;
}

/// The part of the window that its scroll bars leave to the central widget.
inline QRect viewOf(const QMainWindow& window)
{
    QRect view = window.rect();
    if (const QScrollBar* down = scrollBar(window, Qt::Vertical))
        view.setRight(down->x() - 1);
    if (const QScrollBar* sideways = scrollBar(window, Qt::Horizontal))
        view.setBottom(sideways->y() - 1);
    return view;
}

/// The edges that no scrolling brings into sight: the central widget ends where the window shows
/// it, at both ends of both scroll bars. Scrolls back to the start.
inline QStringList unreachableEdges(const QMainWindow& window)
{
    QStringList faults;
    const QRect& central = window.centralWidget()->geometry();
    const QRect view = viewOf(window);
    const QList<QScrollBar*> bars{scrollBar(window, Qt::Horizontal),
                                  scrollBar(window, Qt::Vertical)};
    for (QScrollBar* bar : bars)
        if (bar != nullptr)
            bar->setValue(bar->minimum());
    if (central.topLeft() != view.topLeft())
        faults += "the start";
    for (QScrollBar* bar : bars)
        if (bar != nullptr)
            bar->setValue(bar->maximum());
    if (central.bottomRight() != view.bottomRight())
        faults += "the end";
    for (QScrollBar* bar : bars) {
        if (bar == nullptr)
            continue;
        bar->setValue(bar->minimum());
        if (!bar->isVisible() || bar->maximum() == bar->minimum() ||
            !window.rect().contains(bar->geometry()))
            faults += "a scroll bar";
    }
    return faults;
}
