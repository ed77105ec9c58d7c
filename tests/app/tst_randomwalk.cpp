#include "configset/seriesloader.h"
#include "model/taskcells.h"
#include "tests/app/editor.h"
#include "tests/app/formrules.h"
#include "tests/support/tasks.h"

#include <QTemporaryDir>

#include <random>

namespace {

/// A person without a plan. Beside the window it keeps what the list must hold by now.
class Walker
{
public:
    Walker(unsigned seed, QString folder)
        : m_engine(seed)
        , m_folder(std::move(folder))
    {}

    void step()
    {
        using Step = void (Walker::*)();
        static const Step steps[] = {
            &Walker::chooseMethod, &Walker::chooseType,  &Walker::chooseBuffer, &Walker::toggle,
            &Walker::typePath,     &Walker::enterNumber, &Walker::browse,       &Walker::selectRow,
            &Walker::createNew,    &Walker::overwrite,   &Walker::moveUp,       &Walker::deleteRow,
            &Walker::deleteRow,    &Walker::typeInfo,    &Walker::save,         &Walker::load};
        (this->*steps[number(0, int(std::size(steps)) - 1)])();
    }

    void verifyWindow() const
    {
        QCOMPARE(m_editor.rows(), m_shown);
        const int method = m_editor.index("comboMethod");
        const int type = m_editor.index("comboTestType");
        formrules::verify(
            m_editor, formrules::expectedFor(method, type, m_editor.isChecked("checkNoChunks")));
        const bool newTest = m_editor.isChecked("radioNewTest");
        QCOMPARE(m_editor.isChecked("radioNextConfig"), !newTest);
        QCOMPARE(m_editor.isEnabled("groupBox"), newTest);
    }

private:
    int number(int from, int to) { return std::uniform_int_distribution<int>(from, to)(m_engine); }
    bool coin() { return number(0, 1) == 1; }
    int currentRow() const { return m_editor.table()->currentRow(); }
    bool isRow(int row) const { return row >= 0 && row < m_tasks.size(); }

    template <class Choices>
    auto pick(const Choices& choices)
    {
        return choices[number(0, int(std::size(choices)) - 1)];
    }

    /// Notes the rows that the table must show from its last refresh on.
    void refreshed()
    {
        m_shown.clear();
        int file = 0;
        for (const TestTask& task : qAsConst(m_tasks)) {
            QStringList cells = taskCells(task, file);
            for (QString& cell : cells)
                cell = cell.isNull() ? QString("") : cell;
            m_shown += cells;
            file += task.waitForNextConfig ? 1 : 0;
        }
    }

    void chooseMethod() { m_editor.choose("comboMethod", number(0, 4)); }
    void chooseType() { m_editor.choose("comboTestType", number(0, 2)); }

    void chooseBuffer()
    {
        m_editor.choose("comboSystemBuffer", number(0, 3));
        m_editor.choose("comboCacheMode", number(0, 5));
    }

    void toggle()
    {
        const char* const buttons[] = {"checkNoChunks",  "checkFlush",   "checkPreallocate",
                                       "checkWriteDone", "radioNewTest", "radioNextConfig"};
        m_editor.click(pick(buttons));
    }

    void typePath()
    {
        const char* const edits[] = {"editSource", "editDest", "editLog", "editExcel"};
        const QString texts[] = {"",
                                 "/t/a",
                                 "MEMORY",
                                 "rel/b",
                                 "[cfgPath]/c_[iter]",
                                 "C:\\d",
                                 QString::fromUtf8("/für/€"),
                                 '/' + QString(600, 'x'),
                                 "a;b"};
        m_editor.type(pick(edits), pick(texts));
    }

    void enterNumber()
    {
        const char* const boxes[] = {"spinFileSize", "spinIterations", "spinChunkSize",
                                     "spinChunkWait"};
        m_editor.enter(pick(boxes), number(0, 2000000));
    }

    void browse()
    {
        const char* const buttons[] = {"buttonBrowseDest", "buttonBrowseLog", "buttonBrowseExcel",
                                       "buttonBrowseSource"};
        if (!m_editor.isChecked("radioNewTest"))
            return;
        DialogAnswers answers;
        const int which = number(0, 3);
        // A source must exist, and none does here.
        answers.answerNext(which < 3 && coin() ? chooseFile(m_folder + "chosen.dat")
                                               : cancelDialog());
        m_editor.click(buttons[which]);
    }

    void selectRow()
    {
        if (m_editor.table()->rowCount() > 0)
            m_editor.selectRow(number(0, m_editor.table()->rowCount() - 1));
    }

    void createNew()
    {
        if (m_tasks.size() > 25)
            return;
        m_tasks += m_editor.window.taskFromForm();
        m_editor.click("buttonCreateNew");
        refreshed();
    }

    void overwrite()
    {
        const int row = currentRow();
        const TestTask task = m_editor.window.taskFromForm();
        m_editor.click("buttonCreateOverwrite");
        if (!isRow(row))
            return;
        m_tasks[row] = task;
        refreshed();
    }

    void moveUp()
    {
        const int row = currentRow();
        m_editor.click("buttonMoveUp");
        if (row < 1 || !isRow(row))
            return;
        m_tasks.swapItemsAt(row, row - 1);
        refreshed();
    }

    void deleteRow()
    {
        const int row = currentRow();
        m_editor.click("buttonDelete");
        if (!isRow(row))
            return;
        m_tasks.removeAt(row);
        refreshed();
    }

    void typeInfo() { m_editor.typeInfo(coin() ? "one\ntwo" : ""); }

    void save()
    {
        DialogAnswers answers;
        const bool cancelled = coin();
        if (!m_tasks.isEmpty()) {
            answers.answerNext(cancelled ? cancelDialog() : chooseFile(m_folder + "walk.dpc"));
            if (!cancelled) {
                answers.answerNext(coin() ? cancelDialog() : closeMessage());
                m_saved = true;
            }
        }
        m_editor.click("buttonSave");
        if (m_tasks.isEmpty() || cancelled)
            return;
        // Saving normalises the tasks; the table shows that with its next refresh.
        for (TestTask& task : m_tasks) {
            if (!task.waitForNextConfig)
                task.normalise();
        }
    }

    void load()
    {
        DialogAnswers answers;
        if (!m_tasks.isEmpty()) {
            if (coin()) {
                answers.answerNext(cancelDialog());
                m_editor.click("buttonLoad");
                return;
            }
            answers.answerNext(closeMessage());
        }
        m_tasks.clear();
        if (!m_saved || coin()) {
            answers.answerNext(cancelDialog());
            m_editor.click("buttonLoad");
            return;
        }
        const QString file = m_folder + "_wait/walk.dpc";
        answers.answerNext(chooseFile(file));
        int rejected = 0;
        loadSeries(seriesNameForLoading(file), m_tasks,
                   {[] { return false; }, [](const QString&) {},
                    [&](const QString&, const QString&) { ++rejected; }});
        for (; rejected > 0; --rejected)
            answers.answerNext(closeMessage());
        m_editor.click("buttonLoad");
        refreshed();
    }

    static DialogAnswers::Answer closeMessage()
    {
        return [](QDialog& dialog) { pressKey(dialog, Qt::Key_Return); };
    }

    std::mt19937 m_engine;
    QString m_folder;
    bool m_saved = false;
    Editor m_editor;
    TaskList m_tasks;
    QList<QStringList> m_shown;
};

} // namespace

class TestRandomWalk : public QObject
{
    Q_OBJECT

private slots:
    void aThousandStepsKeepTheRules_data()
    {
        QTest::addColumn<unsigned>("seed");
        // One walk of choice, or several that every run repeats.
        const QByteArray wanted = qgetenv("TWDP_WALK_SEED");
        const QList<QByteArray> seeds =
            wanted.isEmpty() ? QList<QByteArray>{"1", "2", "3"} : QList<QByteArray>{wanted};
        for (const QByteArray& seed : seeds)
            QTest::newRow(seed) << seed.toUInt();
    }

    void aThousandStepsKeepTheRules()
    {
        QFETCH(unsigned, seed);
        const QTemporaryDir folder;
        Walker walker(seed, folder.path() + '/');
        for (int step = 0; step < 1000; ++step) {
            walker.step();
            walker.verifyWindow();
            if (QTest::currentTestFailed())
                QFAIL(qPrintable(QString("TWDP_WALK_SEED=%1, step %2").arg(seed).arg(step)));
        }
    }
};

QTEST_MAIN(TestRandomWalk)
#include "tst_randomwalk.moc"
