#include "app/rememberedsizes.h"

#include <QWidget>

QSize RememberedSizes::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    // A row that is fitted to its cells gives them a width, into which they wrap.
    if (option.rect.isValid())
        return QStyledItemDelegate::sizeHint(option, index);
    QStyle* style = option.widget->style();
    if (m_style != style || m_font != option.font) {
        m_sizes.clear();
        m_style = style;
        m_font = option.font;
    }
    const QString text = index.data().toString();
    const auto known = m_sizes.constFind(text);
    if (known != m_sizes.cend())
        return *known;
    if (m_sizes.size() >= maxTexts)
        m_sizes.clear();
    return *m_sizes.insert(text, QStyledItemDelegate::sizeHint(option, index));
}
