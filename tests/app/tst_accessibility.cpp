#include "tests/app/editor.h"

#include <QAccessible>
#include <QSignalSpy>

// The window for those who cannot see it, or use no mouse.

namespace {

/// The name that a screen reader speaks: the label that is related to the widget, or else its own
/// name. Qt relates everything in a group to the group's title as well; that tells nothing apart.
QString spokenName(QWidget* widget)
{
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget);
    if (interface == nullptr)
        return {};
    for (const auto& relation : interface->relations(QAccessible::Label))
        if (relation.first->role() == QAccessible::StaticText)
            return relation.first->text(QAccessible::Name).simplified();
    return interface->text(QAccessible::Name).simplified();
}

/// The widgets that a person can operate. The parts of Qt's own widgets have no name, or one
/// that begins with "qt_".
QVector<QWidget*> controls(const twDiskProbe& window)
{
    QVector<QWidget*> found;
    for (QWidget* widget : window.findChildren<QWidget*>())
        if (widget->focusPolicy() != Qt::NoFocus && !widget->objectName().isEmpty() &&
            !widget->objectName().startsWith("qt_"))
            found += widget;
    return found;
}

QStringList titlesAround(const QWidget* widget)
{
    QStringList titles;
    for (const QWidget* parent = widget->parentWidget(); parent; parent = parent->parentWidget())
        if (const auto* group = qobject_cast<const QGroupBox*>(parent))
            titles += group->title();
    return titles;
}

QRect placeOf(const QWidget* widget)
{
    return {widget->mapTo(widget->window(), QPoint()), widget->size()};
}

/// True if a person who reads the window comes to the first place before the second: columns from
/// left to right, their rows from top to bottom, and rows from left to right.
bool isReadBefore(const QRect& first, const QRect& second, int rightColumn)
{
    const bool firstIsRight = first.left() >= rightColumn;
    const bool secondIsRight = second.left() >= rightColumn;
    if (firstIsRight != secondIsRight)
        return secondIsRight;
    const int middle = first.center().y();
    const bool sameRow = second.top() <= middle && middle <= second.bottom();
    return sameRow ? first.left() < second.left() : first.top() < second.top();
}

/// Everything that Tab, or another key, comes to until it is back at where it began.
QVector<QWidget*> walk(Editor& editor, QWidget* first, Qt::Key key)
{
    editor.activate();
    first->setFocus(Qt::TabFocusReason);
    QVector<QWidget*> visited;
    do {
        visited += editor.window.focusWidget();
        pressKey(editor.window, key);
    } while (editor.window.focusWidget() != first && visited.size() < 100);
    return visited;
}

} // namespace

class TestAccessibility : public QObject
{
    Q_OBJECT

private slots:
    void everyControlHasANameOfItsOwn()
    {
        const Editor editor;
        QHash<QString, QWidget*> namesakes;
        const QVector<QWidget*> all = controls(editor.window);
        QCOMPARE(all.size(), 30);
        for (QWidget* widget : all) {
            const QString name = spokenName(widget);
            QVERIFY2(name.contains(QRegularExpression("[A-Za-z]{3}")),
                     qPrintable(widget->objectName() + " is called \"" + name + '"'));
            QVERIFY2(!titlesAround(widget).contains(name),
                     qPrintable(widget->objectName() + " is called as its group"));
            QVERIFY2(!namesakes.contains(name), qPrintable(widget->objectName() + " and another " +
                                                           "control are called " + name));
            namesakes[name] = widget;
        }
    }

    void everyGroupHasANameOfItsOwn()
    {
        const Editor editor;
        QSet<QString> names;
        for (QGroupBox* group : editor.window.findChildren<QGroupBox*>()) {
            const QString name = spokenName(group);
            QVERIFY2(!name.isEmpty() && !names.contains(name), qPrintable(group->objectName()));
            names += name;
        }
    }

    void labelsNameTheFieldBesideThem_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("textInfo") << "Config file info text:";
        QTest::newRow("comboMethod") << "Method";
        QTest::newRow("comboTestType") << "Test type";
        QTest::newRow("editSource") << "Source File";
        QTest::newRow("editDest") << "Destination File";
        QTest::newRow("editLog") << "Log File";
        QTest::newRow("editExcel") << ".csv File (Excel)";
        QTest::newRow("spinFileSize") << "File size in KiBytes";
        QTest::newRow("spinIterations") << "Interations";
        QTest::newRow("spinChunkSize") << "Chunk size in KiB";
        QTest::newRow("spinChunkWait") << "Wait between chunks";
        QTest::newRow("comboSystemBuffer") << "System buffer";
        QTest::newRow("comboCacheMode") << "Clear cache";
        QTest::newRow("buttonBrowseSource") << "Choose source file";
        QTest::newRow("buttonBrowseDest") << "Choose destination file";
        QTest::newRow("buttonBrowseLog") << "Choose log file";
        QTest::newRow("buttonBrowseExcel") << "Choose .csv file";
        QTest::newRow("tableWidget") << "Tasks";
        QTest::newRow("groupBox_2") << "Change, save and load the tasks";
    }

    void labelsNameTheFieldBesideThem()
    {
        const Editor editor;
        QTEST(spokenName(editor.find<QWidget>(QTest::currentDataTag())), "name");
    }

    void tabFollowsTheEye()
    {
        Editor editor;
        // Where nothing overlaps, also on a platform whose screen is too small for that.
        editor.window.resize(1900, 1300);
        editor.addWriteTask("/t/a");
        auto* first = editor.find<QWidget>("textInfo");
        const QVector<QWidget*> visited = walk(editor, first, Qt::Key_Tab);
        const int rightColumn = placeOf(editor.find<QWidget>("label_13")).left();
        for (int i = 1; i < visited.size(); ++i)
            QVERIFY2(isReadBefore(placeOf(visited[i - 1]), placeOf(visited[i]), rightColumn),
                     qPrintable(visited[i - 1]->objectName() + " comes before " +
                                visited[i]->objectName()));
    }

    void tabComesToEveryEnabledControlOnceAndOutAgain()
    {
        Editor editor;
        editor.addWriteTask("/t/a");
        editor.addWriteTask("/t/b");
        auto* first = editor.find<QWidget>("textInfo");
        QVector<QWidget*> visited = walk(editor, first, Qt::Key_Tab);
        QStringList missed;
        for (QWidget* widget : controls(editor.window))
            if (widget->isEnabled() && visited.count(widget) != 1)
                missed += widget->objectName();
        // Tab comes to the chosen one of the two that exclude each other, arrow keys to the other.
        QCOMPARE(missed, QStringList{"radioNextConfig"});

        std::reverse(visited.begin() + 1, visited.end());
        QCOMPARE(walk(editor, first, Qt::Key_Backtab), visited);
    }

    void tabComesToTheChosenKindOfTask()
    {
        Editor editor;
        auto* marker = editor.find<QWidget>("radioNextConfig");
        auto* task = editor.find<QWidget>("radioNewTest");
        const auto visits = [&](QWidget* widget) {
            return walk(editor, editor.find<QWidget>("textInfo"), Qt::Key_Tab).contains(widget);
        };
        QVERIFY(visits(task) && !visits(marker));
        editor.check("radioNextConfig");
        QVERIFY(visits(marker) && !visits(task));
        // Chosen by a row of the table, and not by a person.
        editor.addWriteTask("/t/a");
        editor.addMarker();
        editor.selectRow(1);
        QVERIFY(visits(marker) && !visits(task));
        editor.selectRow(0);
        QVERIFY(visits(task) && !visits(marker));
        // A click that ends beside the button gives it the focus without choosing it.
        QTest::mousePress(marker, Qt::LeftButton, {}, QPoint(10, marker->height() / 2));
        QTest::mouseMove(marker, QPoint(10, -40));
        QTest::mouseRelease(marker, Qt::LeftButton, {}, QPoint(10, -40));
        QVERIFY(visits(task) && !visits(marker));
    }

    void descriptionIsAllHelpInItsOrder()
    {
        const Editor editor;
        const auto help = [&](std::initializer_list<const char*> labels) {
            QStringList texts;
            for (const char* label : labels)
                texts += editor.find<QLabel>(label)->text();
            return texts.join('\n');
        };
        const auto description = [&](const char* widget) {
            return editor.find<QWidget>(widget)->accessibleDescription();
        };
        QCOMPARE(description("tableWidget"), help({"label_224", "label_213"}));
        QCOMPARE(description("radioNextConfig"), help({"label_213"}));
        QCOMPARE(description("editSource"),
                 help({"label_216", "label_220", "label_214", "label_223"}));
        QCOMPARE(description("editLog"), help({"label_220", "label_214", "label_223"}));
    }

    void screenReadersAreToldOnlyOfChanges()
    {
        static QVector<QAccessible::Event> told;
        Editor editor;
        QCoreApplication::processEvents();
        told.clear();
        QAccessible::installUpdateHandler([](QAccessibleEvent* event) {
            if (event->type() == QAccessible::NameChanged ||
                event->type() == QAccessible::DescriptionChanged)
                told += event->type();
        });
        QEvent layout(QEvent::LayoutRequest);
        QCoreApplication::sendEvent(editor.find<QWidget>("centralWidget"), &layout);
        QCOMPARE(told.size(), 0);
        editor.table()->setAccessibleName("another");
        QEvent language(QEvent::LanguageChange);
        QCoreApplication::sendEvent(editor.find<QWidget>("centralWidget"), &language);
        QCOMPARE(editor.table()->accessibleName(), "Tasks");
        QAccessible::installUpdateHandler(nullptr);
    }

    void helpTextsDescribeTheirControls_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("help");
        QTest::newRow("method") << "comboMethod"
                                << "label_218";
        QTest::newRow("source") << "editSource"
                                << "label_216";
        for (const char* edit : {"editSource", "editDest", "editLog", "editExcel"})
            for (const char* help : {"label_220", "label_214", "label_223"})
                QTest::addRow("%s %s", edit, help) << edit << help;
        QTest::newRow("size") << "spinFileSize"
                              << "label_FileSizeNotice";
        QTest::newRow("chunks") << "spinChunkSize"
                                << "label_219";
        QTest::newRow("no chunks") << "checkNoChunks"
                                   << "label_219";
        QTest::newRow("cache") << "comboCacheMode"
                               << "label_222";
        QTest::newRow("table") << "tableWidget"
                               << "label_213";
    }

    void helpTextsDescribeTheirControls()
    {
        QFETCH(const QString, control);
        QFETCH(const QString, help);
        const Editor editor;
        auto* widget = editor.find<QWidget>(qPrintable(control));
        auto* label = editor.find<QLabel>(qPrintable(help));
        const auto described = [&] {
            return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Description);
        };
        QVERIFY(described().contains(label->text()));
        // As after a change of the language.
        label->setText("anders");
        QTRY_VERIFY(described().contains("anders"));
    }

    void keysPressTheirButtons_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        const int ctrl = Qt::ControlModifier;
        QTest::newRow("save") << "buttonSave" << int(Qt::Key_S) << ctrl;
        QTest::newRow("load") << "buttonLoad" << int(Qt::Key_O) << ctrl;
        QTest::newRow("create") << "buttonCreateNew" << int(Qt::Key_Return) << ctrl;
        QTest::newRow("overwrite")
            << "buttonCreateOverwrite" << int(Qt::Key_Return) << int(ctrl | Qt::ShiftModifier);
    }

    void keysPressTheirButtons()
    {
        QFETCH(const QString, button);
        QFETCH(const int, key);
        QFETCH(const int, modifiers);
        Editor editor;
        auto* pressed = editor.find<QPushButton>(qPrintable(button));
        QVERIFY(!pressed->text().contains('&'));
        // Wherever a person is: in a text, a list, a number or the table.
        for (const char* focus : {"textInfo", "editDest", "comboMethod", "spinFileSize",
                                  "tableWidget", "buttonCreateNew"}) {
            editor.activate();
            editor.find<QWidget>(focus)->setFocus();
            QSignalSpy clicks(pressed, &QPushButton::clicked);
            DialogAnswers answers;
            const bool asks = button == "buttonLoad" ||
                              (button == "buttonSave" && editor.table()->rowCount() > 0);
            if (asks)
                answers.answerNext(cancelDialog());
            pressKey(editor.window, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
            QTRY_COMPARE(clicks.count(), 1);
            QTRY_COMPARE(answers.answered(), int(asks));
        }
    }

    void arrowsComeToTheOtherKindOfTask()
    {
        Editor editor;
        editor.activate();
        editor.find<QWidget>("radioNewTest")->setFocus();
        pressKey(editor.window, Qt::Key_Up);
        QVERIFY(editor.isChecked("radioNextConfig"));
        pressKey(editor.window, Qt::Key_Down);
        QVERIFY(editor.isChecked("radioNewTest"));
    }

    void arrowsSelectATaskInTheTable()
    {
        Editor editor;
        editor.addWriteTask("/t/a");
        editor.addWriteTask("/t/b");
        editor.selectRow(0);
        editor.activate();
        editor.table()->setFocus();
        pressKey(editor.window, Qt::Key_Down);
        QCOMPARE(editor.text("editDest"), "/t/b");
    }
};

QTEST_MAIN(TestAccessibility)
#include "tst_accessibility.moc"
