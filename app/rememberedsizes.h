#pragma once

#include <QFont>
#include <QHash>
#include <QPointer>
#include <QSize>
#include <QStyle>
#include <QStyledItemDelegate>

/// Shows cells like the usual delegate, and remembers how large their texts are.
///
/// A table of many rows that is filled anew measures every text again to fit its columns, although
/// nearly all of them are the same as before. Sizes are remembered for one font and one style, and
/// for at most maxTexts texts; beyond that all are forgotten. Widths for columns only: what wraps
/// is measured each time. Only for cells that hold nothing but their text: no icon, check box or
/// font of their own.
class RememberedSizes final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// More than what a table measures at once: its first 1,000 rows, in eleven columns.
    static constexpr int maxTexts = 16384;

    /// The remembered size of the text, or the measured one, which is remembered.
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// How many texts are remembered.
    int count() const { return m_sizes.size(); }

private:
    mutable QHash<QString, QSize> m_sizes;
    mutable QFont m_font;
    mutable QPointer<QStyle> m_style;
};
