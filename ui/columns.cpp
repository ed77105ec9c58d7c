#include "ui/columns.h"

#include <QBoxLayout>
#include <QWidget>

#include <algorithm>

namespace {

// Does not believe minimum widths: a group box that has one of its own hides there what the texts
// in it need.
int leastWidth(QLayoutItem& item)
{
    int width = item.minimumSize().width();
    if (const QWidget* widget = item.widget())
        return std::max(width, widget->minimumSizeHint().width());
    const auto* column = qobject_cast<const QVBoxLayout*>(item.layout());
    if (column != nullptr) {
        const QMargins margins = column->contentsMargins();
        for (int i = 0; i < column->count(); ++i)
            width =
                std::max(width, margins.left() + leastWidth(*column->itemAt(i)) + margins.right());
    }
    return width;
}

// A column's height for a width. Asking the row instead would count what may shrink, such as
// spacers and tables, at its preferred height.
int leastHeight(const QLayoutItem& column, int width)
{
    return column.hasHeightForWidth() ? column.minimumHeightForWidth(width)
                                      : column.minimumSize().height();
}

// Takes a column's place in a row that is laid out to measure it.
class MeasuredColumn final : public QLayoutItem
{
public:
    explicit MeasuredColumn(QLayoutItem& column)
        : m_column(column)
    {}

    QSize sizeHint() const override { return m_column.sizeHint(); }
    QSize minimumSize() const override
    {
        return {leastWidth(m_column), m_column.minimumSize().height()};
    }
    QSize maximumSize() const override { return m_column.maximumSize(); }
    Qt::Orientations expandingDirections() const override { return m_column.expandingDirections(); }
    bool isEmpty() const override { return m_column.isEmpty(); }
    QRect geometry() const override { return m_geometry; }
    void setGeometry(const QRect& geometry) override { m_geometry = geometry; }

private:
    QLayoutItem& m_column;
    QRect m_geometry;
};

} // namespace

Columns::Columns(QBoxLayout& row)
    : m_row(row)
{}

int Columns::enoughWidth(int width) const
{
    if (width >= preferredWidth())
        return width;
    QHBoxLayout measured;
    measure(measured);
    return std::max(width, measured.minimumSize().width());
}

int Columns::preferredWidth() const
{
    return m_row.sizeHint().width();
}

int Columns::leastHeight(int width) const
{
    QHBoxLayout measured;
    measure(measured);
    measured.setGeometry({0, 0, width, 0});
    int height = 0;
    for (int i = 0; i < m_row.count(); ++i)
        height = std::max(height,
                          ::leastHeight(*m_row.itemAt(i), measured.itemAt(i)->geometry().width()));
    const QMargins margins = m_row.contentsMargins();
    return margins.top() + height + margins.bottom();
}

void Columns::layOut() const
{
    // The row's own geometry is gone as soon as a widget in it has other needs.
    const QRect place = m_row.parentWidget()->contentsRect();
    if (place.width() >= preferredWidth())
        return;
    QHBoxLayout measured;
    measure(measured);
    measured.setGeometry(place);
    for (int i = 0; i < m_row.count(); ++i)
        m_row.itemAt(i)->setGeometry(measured.itemAt(i)->geometry());
}

void Columns::measure(QHBoxLayout& measured) const
{
    measured.setSpacing(m_row.spacing());
    measured.setContentsMargins(m_row.contentsMargins());
    for (int i = 0; i < m_row.count(); ++i) {
        measured.addItem(new MeasuredColumn(*m_row.itemAt(i)));
        measured.setStretch(i, m_row.stretch(i));
    }
}
