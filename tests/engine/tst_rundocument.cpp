#include "tests/engine/pagerun.h"
#include "tests/support/files.h"
#include "tests/support/ownmounts.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

/// Pages that show runs are played: their files are made and their commands run on fio. The page of
/// running shows what dpc prints, but for the figures. The series of the guides are those that the
/// window saves, as another test knows, with smaller files.
class TestRunDocument : public QObject
{
    Q_OBJECT

private slots:
    void showsWhatDpcPrints();
    void guideEndsWithARun_data();
    void guideEndsWithARun();

private:
    static QString page(const char* name)
    {
        return test::contentOf(TWDP_SOURCE_DIR + QByteArray("/docs/") + name);
    }
};

void TestRunDocument::showsWhatDpcPrints()
{
    const QTemporaryDir folder;
    test::PageRun run(QFileInfo(folder.path()).canonicalFilePath());
    int commands = 0;
    for (const GuidePart& part : guideParts(page("running.md"))) {
        if (part.kind == GuidePart::Kind::Listing)
            run.makeFile(part);
        if (part.kind == GuidePart::Kind::Listing && part.name.endsWith("hosts.txt"))
            run.startServers(part.value, run.placed("/share/test"));
        if (part.kind != GuidePart::Kind::Command)
            continue;
        const test::Printed printed = run.run(part.name);
        QCOMPARE(withoutFigures(run.shown(printed.out)), withoutFigures(part.value));
        ++commands;
    }
    QCOMPARE(commands, 3);
}

void TestRunDocument::guideEndsWithARun_data()
{
    QTest::addColumn<QString>("text");
    int guides = 0;
    for (const GuideSection& section : guideSections(page("user-guide.md"))) {
        if (guideParts(section.text).isEmpty())
            continue;
        QTest::newRow(qPrintable(section.title)) << section.text;
        ++guides;
    }
    QCOMPARE(guides, 4);
}

void TestRunDocument::guideEndsWithARun()
{
    QFETCH(QString, text);
    const QTemporaryDir folder;
    test::PageRun run(QFileInfo(folder.path()).canonicalFilePath());
    QVERIFY(QDir().mkpath(run.placed("/tmp/apart")));
    const QVector<GuidePart> parts = guideParts(text);
    for (const GuidePart& part : parts) {
        if (part.kind == GuidePart::Kind::Listing)
            run.makeFile(part, "2048");
        if (part.kind == GuidePart::Kind::Listing && part.name.endsWith("hosts.txt"))
            run.startServers(part.value, run.placed("/tmp/apart"));
        for (const QString& command : dpcCommands(part)) {
            const test::Printed printed = run.run(command);
            QVERIFY2(printed.status == 0, (command.toUtf8() + '\n' + printed.out).constData());
        }
    }
    QVERIFY(parts.last().name.endsWith("-report"));
}

int main(int count, char** arguments)
{
    test::needFio();
    test::allowMounts();
    test::useOwnNetwork();
    test::useNameOfThePages();
    TestRunDocument tests;
    return QTest::qExec(&tests, count, arguments);
}
#include "tst_rundocument.moc"
