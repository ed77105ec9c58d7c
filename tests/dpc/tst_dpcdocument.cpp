#include "check/rules.h"
#include "tests/dpc/dpcrun.h"

#include <QRegularExpression>
#include <QtTest>

/// docs/dpc.md shows real output: each block that begins with "$ dpc" is run and compared, and the
/// table of rules is the one of the program.
class TestDpcDocument : public QObject
{
    Q_OBJECT

private slots:
    void blocksShowWhatDpcPrints()
    {
        const QString before = document();
        QString after;
        int position = 0;
        int blocks = 0;
        QRegularExpressionMatchIterator it = blockPattern().globalMatch(before);
        while (it.hasNext()) {
            const QRegularExpressionMatch block = it.next();
            after += before.mid(position, block.capturedStart() - position) +
                     rendered(block.captured(1));
            position = block.capturedEnd();
            ++blocks;
        }
        QVERIFY(blocks >= 5);
        compareOrUpdate(before, after + before.mid(position));
    }

    void tableIsThatOfTheProgram()
    {
        const QString before = document();
        const QString begin = "<!-- rules -->\n";
        const int start = before.indexOf(begin) + begin.size();
        const int end = before.indexOf("<!-- end of rules -->");
        QVERIFY(start > begin.size() && end >= start);
        compareOrUpdate(before, before.left(start) + QString::fromStdString(rulesAsMarkdown()) +
                                    before.mid(end));
    }

    void everyRuleIsCompleteAndInItsPlace()
    {
        QSet<QByteArray> names;
        for (int i = 0; i < ruleCount; ++i) {
            const RuleInfo& info = ruleTable()[size_t(i)];
            QCOMPARE(int(info.rule), i);
            QVERIFY(QRegularExpression("^[a-z0-9]+(-[a-z0-9]+)*$").match(info.name).hasMatch());
            QVERIFY2(!names.contains(info.name), info.name);
            names.insert(info.name);
            for (const char* text : {info.meaning, info.bad, info.good})
                QVERIFY2(qstrlen(text) > 0 && !QByteArray(text).contains('|'), info.name);
            QCOMPARE(ruleNamed(info.name), &info);
        }
    }

private:
    static QString path() { return QStringLiteral(TWDP_SOURCE_DIR "/docs/dpc.md"); }
    static QString document() { return QString::fromUtf8(test::contentOf(path())); }

    static QRegularExpression blockPattern()
    {
        return QRegularExpression("```console\n\\$ dpc ([^\n]*)\n.*?```",
                                  QRegularExpression::DotMatchesEverythingOption);
    }

    QString rendered(const QString& arguments) const
    {
        const DpcRun::Result result = m_dpc.run(arguments);
        QByteArray output = result.out + result.err;
        output.replace("@ROOT@", "/srv/tests");
        output.replace("\r\n", "\n"); // CSV has these; a page is text of one kind
        return "```console\n$ dpc " + arguments + '\n' + QString::fromUtf8(output) + "```";
    }

    static void compareOrUpdate(const QString& before, const QString& after)
    {
        if (updatesGolden())
            test::put(path(), after.toUtf8());
        else
            QCOMPARE(after, before);
    }

    DpcRun m_dpc;
};

QTEST_APPLESS_MAIN(TestDpcDocument)
#include "tst_dpcdocument.moc"
