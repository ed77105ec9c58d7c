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
        const QByteArray marker = "[cfgPath]/a1.dpc\n";
        const int most = (maxConfigFile - 4) / marker.size() - 1;
        const QByteArray all = marker.repeated(most);
        const QByteArray padding(maxConfigFile - 4 - all.size() - marker.size(), 'x');
        QCOMPARE(loss(all + "[cfgPath]/" + padding + "a1.dpc\n"), QString());
        QVERIFY(loss(all + "[cfgPath]/" + padding + "xa1.dpc\n").startsWith("a.dpc would be cut"));
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
    QString loss(const QByteArray& content)
    {
        m_series->put("a.dpc", content);
        return QString::fromStdString(lossOfSave(m_series->facts()));
    }

    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestSaveLosses)
#include "tst_savelosses.moc"
