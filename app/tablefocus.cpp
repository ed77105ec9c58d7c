#include "app/tablefocus.h"

#include <QFocusEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QTableWidget>

namespace {

/// A frame over the cells of a table. Not every style paints one that can be seen.
class FocusFrame final : public QWidget
{
public:
    explicit FocusFrame(QTableWidget& table)
        : QWidget(&table)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        constexpr int width = 2;
        QPainter painter(this);
        painter.setPen(QPen(palette().color(QPalette::Highlight), width, Qt::SolidLine,
                            Qt::SquareCap, Qt::MiterJoin));
        painter.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
    }
};

class TableFocus final : public QObject
{
public:
    explicit TableFocus(QTableWidget& table)
        : QObject(&table)
        , m_table(table)
        , m_viewport(*table.viewport())
        , m_frame(*new FocusFrame(table))
    {
        table.setTabKeyNavigation(false);
        table.installEventFilter(this);
        m_viewport.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == &m_viewport) {
            if (event->type() == QEvent::Resize || event->type() == QEvent::Move)
                m_frame.setGeometry(m_viewport.geometry());
        } else if (event->type() == QEvent::FocusOut) {
            m_frame.hide();
        } else if (event->type() == QEvent::FocusIn) {
            m_frame.show();
            m_frame.raise();
            return choosesCell(dynamic_cast<const QFocusEvent&>(*event));
        }
        return QObject::eventFilter(watched, event);
    }

private:
    /// For every reason but a click a table without a current cell would make its first one
    /// current.
    bool choosesCell(const QFocusEvent& event) const
    {
        return event.reason() != Qt::MouseFocusReason && !m_table.currentIndex().isValid();
    }

    QTableWidget& m_table;
    QWidget& m_viewport; // a table that is being destroyed can't be asked for it any more
    FocusFrame& m_frame;
};

} // namespace

void makeTabStop(QTableWidget& table)
{
    new TableFocus(table); // the table's child
}
