#include "tests/dpc/dpcrun.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

/// Every file in tests/data/dpc/golden is a command and all that it prints, byte for byte: the
/// command line, standard output, standard error if there is any, the exit status.
class TestDpcGolden : public QObject
{
    Q_OBJECT

private slots:
    void outputIsAsWritten_data()
    {
        QTest::addColumn<QString>("file");
        const QDir folder(DpcRun::dataFolder() + "golden");
        for (const QString& name : folder.entryList({"*.txt"}, QDir::Files, QDir::Name))
            QTest::newRow(qPrintable(name)) << folder.filePath(name);
    }

    void outputIsAsWritten()
    {
        QFETCH(QString, file);
        const QByteArray expected = test::contentOf(file);
        const QByteArray command = expected.left(expected.indexOf('\n'));
        QVERIFY2(command.startsWith("$ dpc"), command.constData());

        // Output for a terminal is asked for by the name of the file.
        const bool colour = QFileInfo(file).fileName().startsWith("colour");
        const DpcRun::Result result = m_dpc.run(command.mid(6), colour);
        QByteArray actual = command + '\n' + result.out;
        if (!result.err.isEmpty())
            actual += "--- error stream\n" + result.err;
        actual += "--- exit status " + QByteArray::number(result.code) + '\n';
        actual.replace(m_dpc.temporary(), "@TEMP@");
        if (updatesGolden())
            test::put(file, actual);
        else
            QCOMPARE(QString::fromUtf8(actual), QString::fromUtf8(expected));
    }

    void nothingWasWritten()
    {
        const QString source = DpcRun::dataFolder() + "series";
        QCOMPARE(test::entriesOf(QDir::currentPath()), test::entriesOf(source));
    }

private:
    DpcRun m_dpc;
};

QTEST_APPLESS_MAIN(TestDpcGolden)
#include "tst_dpcgolden.moc"
