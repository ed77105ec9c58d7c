#include "dpc/commandline.h"
#include "tests/app/guides.h"
#include "tests/engine/fioserver.h"
#include "tests/engine/seriesrun.h"
#include "tests/support/files.h"
#include "tests/support/leaveout.h"
#include "tests/support/ownmounts.h"

#include <QDir>
#include <QtTest>

#include <memory>
#include <sched.h>
#include <sstream>
#include <unistd.h>

/// docs/running.md is played: its files are made, its commands run on fio, and what they print is
/// what the page shows, but for the figures.
class TestRunDocument : public QObject
{
    Q_OBJECT

private slots:
    void showsWhatDpcPrints();
};

void TestRunDocument::showsWhatDpcPrints()
{
    const QTemporaryDir folder;
    const QString root = QFileInfo(folder.path()).canonicalFilePath();
    // The page's folders, and those that stand for them here.
    const auto placed = [&](QString text) {
        return text.replace("/share/test", root + "/test").replace("/tmp/run", root + "/run");
    };
    const auto shown = [&](QString text) {
        return text.replace(root + "/test", "/share/test").replace(root + "/run", "/tmp/run");
    };
    const QString page = test::contentOf(TWDP_SOURCE_DIR "/docs/running.md");
    QDir().mkpath(root + "/test");
    std::vector<std::unique_ptr<test::FioServer>> servers;
    int commands = 0;
    for (const GuidePart& part : guideParts(page)) {
        if (part.kind == GuidePart::Kind::Listing) {
            const QString path = placed(part.name);
            QDir().mkpath(QFileInfo(path).path());
            test::put(path, placed(part.value).toLatin1());
        }
        if (part.kind != GuidePart::Kind::Command)
            continue;
        if (part.name.contains("hosts.txt")) {
            for (const char* address : {"ip:127.0.0.11,8765", "ip:127.0.0.12,8765"})
                servers.push_back(
                    std::make_unique<test::FioServer>(address, root + "/test", "size=200m"));
        }
        std::vector<std::string> words;
        for (const QString& word : placed(part.name).split(' ').mid(1))
            words.push_back(word.toStdString());
        std::ostringstream both;
        runDpc(words, {both, both, false});
        QCOMPARE(withoutFigures(shown(QString::fromStdString(both.str()))),
                 withoutFigures(part.value));
        ++commands;
    }
    QCOMPARE(commands, 3);
}

int main(int count, char** arguments)
{
    test::needFio();
    test::allowMounts();
    test::useOwnNetwork();
    if (::unshare(CLONE_NEWUTS) != 0 || ::sethostname("pc07", 4) != 0)
        test::leaveOut("can't give this machine another name; run this test as root");
    TestRunDocument tests;
    return QTest::qExec(&tests, count, arguments);
}
#include "tst_rundocument.moc"
