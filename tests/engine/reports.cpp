#include "tests/engine/pagerun.h"
#include "tests/support/files.h"
#include "tests/support/ownmounts.h"

#include <QCoreApplication>
#include <QDir>

// Runs the series of the guides as they are, and puts the pages of their reports into a folder,
// each under the name of its picture. usage: docReports FOLDER

namespace {

void play(const GuideSection& guide, const QString& folder)
{
    test::PageRun run({});
    QString report;
    for (const GuidePart& part : guideParts(guide.text)) {
        if (part.kind == GuidePart::Kind::Listing)
            run.makeFile(part);
        if (part.kind == GuidePart::Kind::Listing && part.name.endsWith("hosts.txt"))
            run.startServers(part.value, "/mnt/apart");
        for (const QString& command : dpcCommands(part)) {
            const test::Printed printed = run.run(command);
            if (printed.status != 0)
                qFatal("%s:\n%s", qPrintable(command), printed.out.constData());
            report = command.section("--output ", 1).section(' ', 0, 0);
        }
        if (part.kind == GuidePart::Kind::Picture && isOfReport(part) &&
            !QFile::copy(report, folder + part.name + ".html"))
            qFatal("can't copy the report of '%s'", qPrintable(guide.title));
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc != 2 || !QDir(argv[1]).exists())
        qFatal("usage: docReports FOLDER");
    const QString folder = QDir(argv[1]).absolutePath() + '/';
    test::allowMounts();
    test::useOwnNetwork();
    test::useNameOfThePages();
    // The disk and the share of the guides, and their runs.
    const test::SmallDisk disks("/mnt", "size=4g");
    const test::SmallDisk runs("/tmp", "size=1g");
    QDir().mkpath("/mnt/apart");
    const QByteArray page = test::contentOf(TWDP_SOURCE_DIR "/docs/user-guide.md");
    for (const GuideSection& guide : guideSections(QString::fromUtf8(page)))
        play(guide, folder);
    return 0;
}
