#include "check/savelosses.h"
#include "tests/check/seriesfolder.h"

/// Whether a load and a save keep a series.
class TestSaveLosses : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_series.reset(new SeriesFolder); }

    /// The characters of the comments, of the empty line below them, of the tasks and of the
    /// marker, each line with its end.
    void fileThatASaveJustFillsIsKept()
    {
        m_series->save({readingTask("/d/s.dat")});
        const QByteArray saved = test::contentOf(m_series->root() + "_wait/a.dpc");
        QVERIFY(QFile::remove(m_series->root() + "_wait/a.dpc"));
        const QByteArray head = "# info\n\n";
        QVERIFY(saved.startsWith(head));
        const QByteArray line = saved.mid(head.size());
        const QByteArray marker = m_series->root().toLatin1() + "_wait/a1.dpc\n";
        const int space = maxConfigFile - marker.size() - 200;
        const QByteArray end = line.repeated(space / line.size()) + marker;
        // Characters outside of ASCII have one byte each in the file.
        const QByteArray first = "# \xE4\xE4\xE4\n# ";
        const QByteArray padding(maxConfigFile - first.size() - 2 - end.size(), 'x');
        QCOMPARE(loss(first + padding + "\n\n" + end), QString());
        QCOMPARE(loss(first + padding + "x\n\n" + end),
                 QString("a.dpc would be cut at %1 characters").arg(maxConfigFile));
    }

    /// A save begins the file with an empty comment then.
    void seriesWithoutCommentsGetsOne()
    {
        const int space = maxConfigFile - int(qstrlen("# \n\n"));
        QCOMPARE(loss(tasksOf(space)), QString());
        QCOMPARE(loss(tasksOf(space + 1)),
                 QString("a.dpc would be cut at %1 characters").arg(maxConfigFile));
    }

    /// A save names the next file by its whole path, and parts a file behind each marker.
    void markerIsCountedAsItIsSaved()
    {
        const QByteArray marker = "[cfgPath]/a1.dpc\n";
        const int inFile = m_series->root().size() + int(qstrlen("_wait/a1.dpc\n"));
        const int rest = maxConfigFile - int(qstrlen("# \n\n")) - inFile;
        const QByteArray tasks = tasksOf(rest);
        m_series->put("a1.dpc", goodLine());
        QCOMPARE(loss(tasks + marker), QString());
        QCOMPARE(loss(tasksOf(rest + 1) + marker),
                 QString("a.dpc would be cut at %1 characters").arg(maxConfigFile));
        QVERIFY(QFile::remove(m_series->root() + "a1.dpc"));
        QCOMPARE(loss(tasks + marker + tasks), QString());
    }

    void fileThatIsLeftOverIsALoss()
    {
        m_series->put("a1.dpc", goodLine());
        QCOMPARE(loss(goodLine()), QString("a1.dpc is left over"));
        QCOMPARE(loss(goodLine() + "[cfgPath]/a1.dpc\n"), QString());
    }

    void fileThatIsThereTwiceIsALoss()
    {
        m_series->put("_wait/a.dpc", goodLine({{4, "20"}}));
        QCOMPARE(loss(goodLine()), QString("a.dpc is there twice"));
    }

    void oneCharacterBehindTheLastFieldIsALoss()
    {
        const QByteArray line = goodLine().trimmed();
        QCOMPARE(loss(line + '\n'), QString());
        QCOMPARE(loss(line + "x\n"), QString("a.dpc:1 is cut when it is loaded"));
    }

    void pathOfJustTheLimitIsKept()
    {
        const QByteArray path = '/' + QByteArray(maxPath - 1, 'x');
        for (const int field : {10, 11, 12, 13}) {
            QCOMPARE(loss(goodLine({{field, path}})), QString());
            QCOMPARE(loss(goodLine({{field, path + 'x'}})),
                     QString("a.dpc:1 is cut when it is loaded"));
        }
    }

    void commentOfAnyLengthIsNoLoss()
    {
        QCOMPARE(loss("# " + QByteArray(maxLine, 'x') + '\n' + goodLine()), QString());
    }

private:
    /// Tasks whose lines are as long together, and are saved as they are.
    static QByteArray tasksOf(int length)
    {
        TestTask task = readingTask("/s");
        const int least = lineOf(task).size();
        QByteArray lines = lineOf(task).toLatin1().repeated(length / least - 1);
        const int rest = length - lines.size() - least;
        task.sourcePath = path(qPrintable("/s" + QString(rest, 's')));
        return lines + lineOf(task).toLatin1();
    }

    QString loss(const QByteArray& content)
    {
        m_series->put("a.dpc", content);
        return QString::fromStdString(lossOfSave(m_series->facts()));
    }

    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestSaveLosses)
#include "tst_savelosses.moc"
