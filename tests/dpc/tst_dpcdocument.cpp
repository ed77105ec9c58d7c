#include "check/ruletexts.h"
#include "dpc/commands.h"
#include "dpc/pages/pages.h"
#include "tests/dpc/dpcrun.h"

#include <QRegularExpression>
#include <QTest>

/// docs/dpc.md shows real output: each block that begins with "$ dpc" is run and compared.
/// docs/rules.md is made from the catalogue of rules.
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
        compareOrUpdate(path(), before, after + before.mid(position));
    }

    void pageOfRulesIsThatOfTheProgram()
    {
        const QString before = QString::fromUtf8(test::contentOf(rulesPath()));
        compareOrUpdate(rulesPath(), before, QString::fromStdString(rulesAsMarkdown()));
    }

    void tablesOfOptionsAreThoseOfTheProgram()
    {
        const QString before = document();
        QString after = before;
        for (const Command* command : allCommands()) {
            if (!command->options.empty())
                after = withPart(after, QString("options of ") + command->name,
                                 optionsAsMarkdown(*command));
        }
        compareOrUpdate(path(), before, withPart(after, "statuses", statusAsMarkdown()));
    }

private:
    static QString path() { return QStringLiteral(TWDP_SOURCE_DIR "/docs/dpc.md"); }
    static QString rulesPath() { return QStringLiteral(TWDP_SOURCE_DIR "/docs/rules.md"); }
    static QString document() { return QString::fromUtf8(test::contentOf(path())); }

    /// The document with another text between the comments that begin and end a part.
    static QString withPart(const QString& text, const QString& name, const std::string& part)
    {
        const QString begin = "<!-- " + name + " -->\n";
        const int start = text.indexOf(begin) + begin.size();
        const int end = text.indexOf("<!-- end of " + name + " -->", start);
        if (start < begin.size() || end < 0)
            qFatal("docs/dpc.md lacks a part: %s", qPrintable(name));
        return text.left(start) + QString::fromStdString(part) + text.mid(end);
    }

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

    static void compareOrUpdate(const QString& file, const QString& before, const QString& after)
    {
        if (updatesGolden())
            test::put(file, after.toUtf8());
        else
            QCOMPARE(after, before);
    }

    DpcRun m_dpc;
};

QTEST_APPLESS_MAIN(TestDpcDocument)
#include "tst_dpcdocument.moc"
