#include "app/tablefocus.h"
#include "tests/app/editor.h"

// The focus in the table: it chooses no row, and can be seen.

class TestTableFocus : public QObject
{
    Q_OBJECT

private slots:
    void tabIntoTheTableMakesNoRowCurrent_data()
    {
        QTest::addColumn<int>("reason");
        QTest::newRow("Tab") << int(Qt::TabFocusReason);
        QTest::newRow("Backtab") << int(Qt::BacktabFocusReason);
        QTest::newRow("window") << int(Qt::ActiveWindowFocusReason);
        QTest::newRow("shortcut") << int(Qt::ShortcutFocusReason);
        QTest::newRow("other") << int(Qt::OtherFocusReason);
    }

    void tabIntoTheTableMakesNoRowCurrent()
    {
        QFETCH(const int, reason);
        Editor editor;
        for (const char* dest : {"/t/a", "/t/b"}) {
            editor.type("editDest", dest);
            editor.click("buttonCreateNew");
        }
        editor.type("editDest", "/half/typed");
        editor.activate();
        editor.find<QWidget>("editDest")->setFocus();
        editor.table()->setFocus(Qt::FocusReason(reason));
        QVERIFY(editor.table()->hasFocus());
        QCOMPARE(editor.table()->currentRow(), -1);
        QCOMPARE(editor.table()->selectedItems().size(), 0);
        QCOMPARE(editor.text("editDest"), "/half/typed");
        pressKey(editor.window, Qt::Key_Tab);
        QVERIFY(!editor.table()->hasFocus());
        QCOMPARE(editor.table()->currentRow(), -1);
        editor.table()->setFocus(Qt::FocusReason(reason));
        pressKey(editor.window, Qt::Key_Down);
        QCOMPARE(editor.table()->currentRow(), 0);
        QCOMPARE(editor.text("editDest"), "/t/a");
        pressKey(editor.window, Qt::Key_Down);
        QCOMPARE(editor.text("editDest"), "/t/b");
    }

    void focusInTheTableCanBeSeen_data()
    {
        QTest::addColumn<int>("rows");
        QTest::newRow("empty") << 0;
        QTest::newRow("with tasks") << 2;
    }

    void focusInTheTableCanBeSeen()
    {
        QFETCH(const int, rows);
        Editor editor;
        for (int i = 0; i < rows; ++i)
            editor.click("buttonCreateNew");
        editor.activate();
        editor.find<QWidget>("textInfo")->setFocus();
        const QImage without = editor.table()->grab().toImage();
        editor.table()->setFocus(Qt::TabFocusReason);
        QVERIFY(editor.table()->grab().toImage() != without);
        editor.find<QWidget>("textInfo")->setFocus();
        QCOMPARE(editor.table()->grab().toImage(), without);
    }

    void frameOfTheTableLiesOverItsCells()
    {
        Editor editor;
        editor.click("buttonCreateNew");
        editor.activate();
        editor.find<QWidget>("textInfo")->setFocus();
        QTableWidget* table = editor.table();
        QWidget* frame = nullptr;
        for (QWidget* child :
             table->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (child->testAttribute(Qt::WA_TransparentForMouseEvents))
                frame = child;
        }
        QVERIFY(frame != nullptr);
        QVERIFY(!frame->isVisible());
        const auto isOverTheCells = [&] {
            return frame->isVisible() && frame->geometry() == table->viewport()->geometry() &&
                   table->children().indexOf(frame) > table->children().indexOf(table->viewport());
        };
        table->viewport()->raise();
        table->setFocus(Qt::TabFocusReason);
        QVERIFY(isOverTheCells());
        editor.window.resize(editor.window.size() + QSize(40, 30));
        QTRY_VERIFY(isOverTheCells());
        // The cells move, and keep their size.
        table->verticalHeader()->hide();
        QTRY_VERIFY(isOverTheCells());
        table->viewport()->move(table->viewport()->pos() + QPoint(3, 2));
        QVERIFY(isOverTheCells());
        table->viewport()->resize(table->viewport()->size() - QSize(3, 2));
        QVERIFY(isOverTheCells());
        // A click goes through it.
        editor.selectRow(0);
        QCOMPARE(table->currentRow(), 0);
        editor.find<QWidget>("textInfo")->setFocus();
        QVERIFY(!frame->isVisible());
        editor.window.resize(editor.window.size() - QSize(40, 30));
        QVERIFY(!frame->isVisible());
    }

    void frameOfTheTableIsTwoPixelsWide()
    {
        QTableWidget table;
        makeTabStop(table);
        auto* frame = table.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly).last();
        table.grab(); // gives all parts their places
        QImage image(frame->size(), QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        frame->render(&image, {}, {}, {});
        const QRgb colour = frame->palette().color(QPalette::Highlight).rgb();
        const int right = image.width() - 2;
        const int bottom = image.height() - 2;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const bool isFrame = x < 2 || y < 2 || x >= right || y >= bottom;
                const QRgb expected = isFrame ? colour : 0;
                QVERIFY2(image.pixel(x, y) == expected, qPrintable(QString("%1,%2").arg(x).arg(y)));
            }
        }
    }
};

QTEST_MAIN(TestTableFocus)
#include "tst_tablefocus.moc"
