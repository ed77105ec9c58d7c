#pragma once

#include <QtWidgets>

// Measures whether a shown window has room for its texts, by what its widgets would paint where.

inline QSize textSize(const QWidget& widget, const QString& text, int width, int flags)
{
    const QFontMetrics metrics = widget.fontMetrics();
    QSize size = metrics.boundingRect(QRect(0, 0, width, QWIDGETSIZE_MAX), flags, text).size();
    // A single line may lose the blank rows above and below its letters.
    if (size.height() <= metrics.height())
        size.setHeight(metrics.tightBoundingRect(text).height());
    return size;
}

inline bool holds(const QRect& room, const QSize& needed)
{
    return needed.width() <= room.width() && needed.height() <= room.height();
}

inline bool showsItsText(const QLabel& label)
{
    const int margin = label.margin();
    const QRect room =
        label.contentsRect().adjusted(margin + qMax(label.indent(), 0), margin, -margin, -margin);
    const int flags = label.wordWrap() ? Qt::TextWordWrap : 0;
    return holds(room, textSize(label, label.text(), room.width(), flags));
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
    const QRect room = button.style()->subElementRect(contents, &option, &button);
    return holds(room, textSize(button, button.text(), QWIDGETSIZE_MAX, Qt::TextShowMnemonic));
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
    const QRect room = combo.style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                     QStyle::SC_ComboBoxEditField, &combo);
    for (int i = 0; i < combo.count(); ++i) {
        // The box reckons with advances; bounds are rounded up and may say one pixel more.
        QSize size = textSize(combo, combo.itemText(i), QWIDGETSIZE_MAX, 0);
        size.setWidth(combo.fontMetrics().horizontalAdvance(combo.itemText(i)));
        if (!holds(room, size))
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

inline bool reachesOutOfAParent(const QWidget& widget)
{
    for (const QWidget* parent = widget.parentWidget(); parent; parent = parent->parentWidget())
        if (!parent->rect().contains(QRect(widget.mapTo(parent, {}), widget.size())))
            return true;
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

/// What is wrong with the window's texts; empty where every text is whole.
inline QStringList cutTexts(const QMainWindow& window)
{
    QStringList faults;
    const auto widgets = shownWidgets(window);
    for (const QWidget* widget : widgets) {
        if (!showsItsText(*widget))
            faults += widget->objectName() + " is cut";
        if (reachesOutOfAParent(*widget))
            faults += widget->objectName() + " reaches out";
        for (const QWidget* other : widgets)
            if (widget < other && widget->parent() == other->parent() &&
                widget->geometry().intersects(other->geometry()))
                faults += widget->objectName() + " overlaps " + other->objectName();
    }
    return faults;
}
