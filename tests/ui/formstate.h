#pragma once

#include "tests/ui/formlisting.h"
#include "tests/ui/formtexts.h"

#include <QTranslator>

// The parts of the form that a translation changes, and those that it must leave.

/// The keys that press buttons.
inline QStringList formKeys()
{
    return {"Ctrl+S", "Ctrl+O", "Ctrl+Return", "Ctrl+Shift+Return"};
}

/// Translates every text of the form's context into the text after a "~", so that a text that was
/// asked for is told from one that was not. Keys stay what they are, as a translator leaves them.
class MarkingTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* text, const char* /*comment*/,
                      int /*n*/) const override
    {
        if (QByteArray(context) != "twDiskProbeClass" || formKeys().contains(text))
            return {};
        return QString("~") + text;
    }
};

inline QVector<ObjectText> allTexts()
{
    return shortTexts() + helpTexts();
}

/// The text that a label, button, group or text field shows.
inline QString textOf(const QObject& object)
{
    for (const char* property : {"text", "title", "plainText"})
        if (object.metaObject()->indexOfProperty(property) >= 0)
            return object.property(property).toString();
    return "has no text";
}

/// The items of a combo box may change their texts, but never what they stand for.
inline QStringList itemDataOf(const QComboBox& combo)
{
    QStringList lines;
    for (int i = 0; i < combo.count(); ++i)
        lines += QString("%1 item %2 %3")
                     .arg(combo.objectName())
                     .arg(i)
                     .arg(combo.itemData(i).toString());
    return lines;
}

inline QStringList cellsOf(const QTableWidget& table)
{
    QStringList lines;
    for (int row = 0; row < table.rowCount(); ++row)
        for (int column = 0; column < table.columnCount(); ++column)
            if (const QTableWidgetItem* item = table.item(row, column))
                lines += QString("cell %1,%2 %3").arg(row).arg(column).arg(item->text());
    return lines;
}

/// Everything of the window but the texts of the form: every property of every widget, the values
/// of the items, and the tasks.
inline QStringList stateOf(const QMainWindow& window)
{
    static const QSet<QString> texts = {"text", "title", "plainText", "toolTip", "currentText"};
    QStringList lines = {window.objectName(), sizeName(window.size())};
    for (const QWidget* widget : namedWidgets(window))
        for (int i = 0; i < widget->metaObject()->propertyCount(); ++i) {
            const QMetaProperty property = widget->metaObject()->property(i);
            const bool ownText = qobject_cast<const QLineEdit*>(widget) != nullptr;
            if (property.isWritable() && (ownText || !texts.contains(property.name())))
                lines +=
                    QString("%1 %2 %3")
                        .arg(widget->objectName(), property.name(), valueName(property, *widget));
        }
    for (const QComboBox* combo : window.findChildren<QComboBox*>())
        lines += itemDataOf(*combo);
    for (const QTableWidget* table : window.findChildren<QTableWidget*>())
        lines += cellsOf(*table);
    return lines;
}
