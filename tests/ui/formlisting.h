#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMetaEnum>
#include <QPlainTextEdit>
#include <QProxyStyle>
#include <QPushButton>
#include <QRadioButton>
#include <QSet>
#include <QSpinBox>
#include <QTableWidget>
#include <QVector>

#include <memory>

// Lists a built form in the notation of formtree.h.

// Margins and growth that a form leaves to the style come out as no form would set them itself.
class TellTaleStyle : public QProxyStyle
{
public:
    static constexpr int margin = 37;

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override
    {
        switch (metric) {
        case PM_LayoutLeftMargin:
        case PM_LayoutTopMargin:
        case PM_LayoutRightMargin:
        case PM_LayoutBottomMargin:
        case PM_LayoutHorizontalSpacing:
        case PM_LayoutVerticalSpacing:
            return margin;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override
    {
        if (hint == SH_FormLayoutFieldGrowthPolicy)
            return QFormLayout::FieldsStayAtSizeHint;
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
};

template <typename Enum>
QString enumName(Enum value)
{
    return QMetaEnum::fromType<Enum>().valueToKey(value);
}

inline QString policyName(const QSizePolicy& policy)
{
    QString name = enumName(policy.horizontalPolicy()) + '/' + enumName(policy.verticalPolicy());
    if (policy.horizontalStretch() != 0 || policy.verticalStretch() != 0)
        name += " stretched";
    return name;
}

inline QString sizeName(const QSize& size)
{
    const auto side = [](int length) {
        return length == QWIDGETSIZE_MAX ? QString("any") : QString::number(length);
    };
    const QString gapLeft = size.width() != QWIDGETSIZE_MAX ? "" : " ";
    const QString gapRight = size.height() != QWIDGETSIZE_MAX ? "" : " ";
    return side(size.width()) + gapLeft + 'x' + gapRight + side(size.height());
}

// Empty for types that have no value to compare, such as icons and cursors.
inline QString valueName(const QMetaProperty& property, const QObject& object)
{
    const QVariant value = property.read(&object);
    if (property.isFlagType())
        return property.enumerator().valueToKeys(value.toInt());
    if (property.isEnumType())
        return property.enumerator().valueToKey(value.toInt());
    if (value.type() == QVariant::Size)
        return sizeName(value.toSize());
    if (value.type() == QVariant::SizePolicy)
        return policyName(value.value<QSizePolicy>());
    return value.toString();
}

inline std::unique_ptr<QWidget> newWidget(const QString& type)
{
    if (type == "QWidget")
        return std::make_unique<QWidget>();
    if (type == "QLabel")
        return std::make_unique<QLabel>();
    if (type == "QLineEdit")
        return std::make_unique<QLineEdit>();
    if (type == "QPlainTextEdit")
        return std::make_unique<QPlainTextEdit>();
    if (type == "QTableWidget")
        return std::make_unique<QTableWidget>();
    if (type == "QGroupBox")
        return std::make_unique<QGroupBox>();
    if (type == "QPushButton")
        return std::make_unique<QPushButton>();
    if (type == "QRadioButton")
        return std::make_unique<QRadioButton>();
    if (type == "QCheckBox")
        return std::make_unique<QCheckBox>();
    if (type == "QComboBox")
        return std::make_unique<QComboBox>();
    if (type == "QSpinBox")
        return std::make_unique<QSpinBox>();
    return nullptr;
}

// Texts, palettes and fonts have tables of their own; the others say the same as another property,
// or follow from the layout.
inline bool isListed(const QMetaProperty& property)
{
    static const QSet<QString> elsewhere = {
        "objectName",   "text",          "title",        "toolTip",
        "plainText",    "currentText",   "font",         "palette",
        "geometry",     "pos",           "size",         "locale",
        "minimumWidth", "minimumHeight", "maximumWidth", "maximumHeight",
    };
    return property.isWritable() && !elsewhere.contains(property.name());
}

inline QString settings(const QWidget& widget)
{
    const auto plain = newWidget(widget.metaObject()->className());
    if (!plain)
        return " of an unexpected class";
    QString listed;
    for (int i = 0; i < widget.metaObject()->propertyCount(); ++i) {
        const QMetaProperty property = widget.metaObject()->property(i);
        if (!isListed(property))
            continue;
        const QString value = valueName(property, widget);
        if (value != valueName(property, *plain))
            listed += QString(" %1=%2").arg(property.name(), value);
    }
    return listed;
}

inline QString marginsOf(const QLayout& layout)
{
    // A layout in a layout leaves no margin unless it sets one.
    const bool nested = qobject_cast<QLayout*>(layout.parent()) != nullptr;
    const int unset = nested ? 0 : TellTaleStyle::margin;
    const auto side = [unset](int margin) {
        return margin == unset ? QString("-") : QString::number(margin);
    };
    const QMargins margins = layout.contentsMargins();
    return QStringList{side(margins.left()), side(margins.top()), side(margins.right()),
                       side(margins.bottom())}
        .join(',');
}

inline QString settings(const QLayout& layout)
{
    QString spacing = QString::number(layout.spacing());
    QString growth;
    if (const auto* form = qobject_cast<const QFormLayout*>(&layout)) {
        growth = " growth=" + enumName(form->fieldGrowthPolicy());
        spacing = QString("%1/%2").arg(form->horizontalSpacing()).arg(form->verticalSpacing());
    } else if (const auto* grid = qobject_cast<const QGridLayout*>(&layout)) {
        spacing = QString("%1/%2").arg(grid->horizontalSpacing()).arg(grid->verticalSpacing());
    }
    return QString("%1 spacing=%2 margins=%3").arg(growth, spacing, marginsOf(layout));
}

inline QString placeOf(const QLayout& layout, int index)
{
    if (const auto* form = qobject_cast<const QFormLayout*>(&layout)) {
        int row = 0;
        QFormLayout::ItemRole role{};
        form->getItemPosition(index, &row, &role);
        const char* column = role == QFormLayout::LabelRole   ? "label"
                             : role == QFormLayout::FieldRole ? "field"
                                                              : "spanning";
        return QString("row %1 %2: ").arg(row).arg(column);
    }
    if (const auto* grid = qobject_cast<const QGridLayout*>(&layout)) {
        int row = 0;
        int column = 0;
        int rows = 0;
        int columns = 0;
        grid->getItemPosition(index, &row, &column, &rows, &columns);
        return QString("cell %1,%2 %3x%4: ").arg(row).arg(column).arg(rows).arg(columns);
    }
    return {};
}

// Without the widgets that Qt's own classes are made of.
inline QVector<QWidget*> namedWidgets(const QMainWindow& window)
{
    QVector<QWidget*> widgets;
    for (QWidget* widget : window.findChildren<QWidget*>())
        if (!widget->objectName().isEmpty() && !widget->objectName().startsWith("qt_"))
            widgets += widget;
    return widgets;
}

class FormListing
{
public:
    explicit FormListing(QWidget& root) { addWidget(root, 0, {}); }

    const QStringList& lines() const { return m_lines; }
    const QSet<const QObject*>& objects() const { return m_objects; }

private:
    void add(int depth, const QString& text) { m_lines += QString(2 * depth, ' ') + text; }

    void addObject(const QObject& object, int depth, const QString& place, const QString& settings)
    {
        m_objects += &object;
        add(depth, place + object.objectName() + ' ' + object.metaObject()->className() + settings);
    }

    void addWidget(QWidget& widget, int depth, const QString& place)
    {
        addObject(widget, depth, place, settings(widget));
        // Views lay out their insides themselves.
        if (widget.layout() && !qobject_cast<QAbstractScrollArea*>(&widget))
            addLayout(*widget.layout(), depth + 1, {});
    }

    void addLayout(QLayout& layout, int depth, const QString& place)
    {
        addObject(layout, depth, place, settings(layout));
        for (int i = 0; i < layout.count(); ++i)
            addItem(layout, i, depth + 1);
    }

    void addItem(QLayout& layout, int index, int depth)
    {
        QLayoutItem& item = *layout.itemAt(index);
        const QString place = placeOf(layout, index);
        if (QWidget* widget = item.widget()) {
            if (widget->parentWidget() != layout.parentWidget())
                add(depth, "a child of another widget:");
            addWidget(*widget, depth, place);
        } else if (item.layout()) {
            addLayout(*item.layout(), depth, place);
        } else if (const QSpacerItem* spacer = item.spacerItem()) {
            add(depth,
                QString("%1spacer %2 %3")
                    .arg(place, sizeName(spacer->sizeHint()), policyName(spacer->sizePolicy())));
        }
    }

    QStringList m_lines;
    QSet<const QObject*> m_objects;
};
