#include "tests/engine/pagerun.h"

#include "dpc/commandline.h"
#include "tests/support/files.h"
#include "tests/support/leaveout.h"

#include <QDir>

#include <sched.h>
#include <sstream>
#include <unistd.h>

namespace test {

namespace {

const QStringList foldersOfPages = {"/mnt/", "/share/", "/tmp/"};

} // namespace

void useNameOfThePages()
{
    const QByteArray name = "pc07";
    if (::unshare(CLONE_NEWUTS) != 0 || ::sethostname(name.constData(), size_t(name.size())) != 0)
        leaveOut("can't give this machine another name; run this test as root");
}

PageRun::PageRun(QString root)
    : m_root(std::move(root))
{
    QDir().mkpath(m_root + "/tmp");
}

QString PageRun::placed(QString text) const
{
    // A word or a line begins with the name, or an "=" stands before it.
    static const QRegularExpression name("(?<![A-Za-z0-9\\]])(/(?:mnt|share|tmp)/)");
    return text.replace(name, m_root + "\\1");
}

QString PageRun::shown(QString text) const
{
    for (const QString& folder : foldersOfPages)
        text.replace(m_root + folder, folder);
    return text;
}

void PageRun::makeFile(const GuidePart& listing, const QByteArray& fileSizeKib) const
{
    const QString path = placed(listing.name);
    QByteArray content = placed(listing.value).toLatin1();
    if (!fileSizeKib.isEmpty())
        content.replace("; 102400;", "; " + fileSizeKib + ';');
    QDir().mkpath(QFileInfo(path).path());
    put(path, content);
}

Printed PageRun::run(const QString& command) const
{
    std::vector<std::string> words;
    for (const QString& word : placed(command).split(' ').mid(1))
        words.push_back(word.toStdString());
    std::ostringstream both;
    const int status = runDpc(words, {both, both, false});
    return {QByteArray::fromStdString(both.str()), {}, status};
}

void PageRun::startServers(const QString& machines, const QString& apart)
{
    for (const QString& machine : machines.split('\n', Qt::SkipEmptyParts))
        m_servers.push_back(
            std::make_unique<FioServer>(machine.section('=', 1).toUtf8(), apart, "size=200m"));
}

} // namespace test
