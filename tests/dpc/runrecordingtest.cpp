#include "tests/dpc/runrecordingtest.h"

#include "dpc/commandline.h"
#include "tests/support/childprocess.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>

#include <csignal>
#include <fstream>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using test::SeriesRun;

void RunRecordingTest::initTestCase()
{
    // No fio but the one that stands in for it can be run.
    for (const char* tool : {"sh", "awk", "df", "dirname", "mkdir", "rm", "sed", "seq", "sleep",
                             "stat", "tail", "truncate"})
        QVERIFY(QFile::link(QStandardPaths::findExecutable(tool), m_tools.filePath(tool)));
    qputenv("PATH", m_tools.path().toUtf8());
}

void RunRecordingTest::init()
{
    putFio({});
    for (const char* name : {"STANDIN_VERSION", "STANDIN_OUTPUT", "STANDIN_ERRORS", "STANDIN_NO",
                             "STANDIN_MUTE", "STANDIN_NOW", "STANDIN_ASK"})
        qunsetenv(name);
    m_series = std::make_unique<SeriesRun>();
    Recordings::hide(m_series->folder(), "@ROOT@");
}

void RunRecordingTest::cleanup()
{
    for (const int socket : m_sockets)
        ::close(socket);
    m_sockets.clear();
    m_series.reset();
}

void RunRecordingTest::putFio(const QByteArray& script) const
{
    const QString fio = m_tools.filePath("fio");
    QFile::remove(fio);
    if (script.isEmpty())
        QVERIFY(QFile::link(TWDP_STANDIN, fio));
    else
        test::put(fio, "#!/bin/sh\n" + script + "\nexec '" TWDP_STANDIN "' \"$@\"\n", 0755);
}

QString RunRecordingTest::comparable(QString text) const
{
    const auto hide = [&](const char* pattern, const char* name) {
        text.replace(QRegularExpression(pattern), name);
    };
    hide("\"(startedMs|endedMs)\": [0-9]+", "\"\\1\": @MS@");
    hide("\"process\": [0-9]+", "\"process\": @PROCESS@");
    hide("\"dpcVersion\": \"[^\"]*\"", "\"dpcVersion\": @VERSION@");
    hide("\"id\": \"[0-9a-f]{12}\"", "\"id\": @ID@");
    hide("/dpc-[0-9a-f]{12}", "/dpc-@ID@");
    hide("20[0-9]{2}-[0-9-]{5} [0-9:]{8}", "@DATE@");
    hide(", in [0-9]+\\.[0-9] s", ", in @SECONDS@");
    // Code that is a file of its own.
    hide("<script>(?s:.*?)</script>", "<script>@SCRIPT@</script>");
    hide("<style>(?s:.*?)</style>", "<style>@STYLE@</style>");
    // As a regular expression of sed.
    text.replace(QString(m_series->folder()).replace("/", "\\/"), "@ROOT@");
    const QRegularExpression host(
        "(?<![/\\w.-])" + QRegularExpression::escape(QSysInfo::machineHostName()) + "(?![/\\w.-])");
    // The columns of tables are as wide as the name.
    if (text.contains(host)) {
        text.replace(host, "@HOST@");
        hide("  +", "  ");
    }
    return text;
}

QString RunRecordingTest::folderText(const QString& folder, const QString& pattern) const
{
    const QRegularExpression wanted('(' + pattern + ")$");
    QString text;
    for (const QString& file : test::entriesOf(m_series->file(folder))) {
        text += "--- " + folder + '/' + file + '\n';
        if (wanted.match(file).hasMatch())
            text += QString::fromUtf8(m_series->content(folder + '/' + file));
    }
    return text;
}

/// In a process of its own: the threads of QTest would take the signals that a run waits for.
void RunRecordingTest::command(const QStringList& words, int status) const
{
    std::vector<std::string> arguments;
    for (const QString& word : words)
        arguments.push_back(word.toStdString());
    const pid_t child = test::startChild([&] {
        ::signal(SIGHUP, SIG_DFL);
        std::ofstream out(m_tools.filePath("out").toStdString());
        std::ofstream err(m_tools.filePath("err").toStdString());
        const int code = runDpc(arguments, {out, err, false});
        out.flush();
        err.flush();
        test::endChild(code);
    });
    const int code = SeriesRun::statusOf(child);
    const QByteArray err = test::contentOf(m_tools.filePath("err"));
    QVERIFY2(code == status, err.constData());
    constexpr int mostLines = 120;
    const QString out = QString::fromUtf8(test::contentOf(m_tools.filePath("out")));
    Recordings::compare("$ dpc " + comparable(words.join(' ')) + '\n' +
                        comparable(out).section('\n', 0, mostLines) + "--- error stream\n" +
                        comparable(QString::fromUtf8(err)));
}

void RunRecordingTest::run(const QStringList& arguments, int status) const
{
    QStringList words = QStringList{"run"} + arguments;
    if (!words.contains("--date"))
        words += {"--date", "today"};
    command(words + QStringList{"--to", m_series->file("run"), m_series->file("mytest.dpc")},
            status);
    Recordings::compare(comparable(folderText("run", "state.json|results.csv|manifest")));
}

/// Some that listen, as fio's servers do.
QStringList RunRecordingTest::machines(int count)
{
    QByteArray hosts;
    for (int i = 1; i <= count; ++i) {
        const QByteArray name = QByteArray(i < 10 ? "pc0" : "pc") + QByteArray::number(i);
        const QByteArray path = m_series->file(name).toUtf8();
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        if (size_t(path.size()) >= sizeof address.sun_path)
            qFatal("the folder for temporary files has too long a name");
        std::copy(path.begin(), path.end(), address.sun_path);
        const int number = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        constexpr int backlog = 16;
        if (::bind(number, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(number, backlog) != 0)
            qFatal("can't listen at a socket");
        m_sockets.push_back(number);
        hosts += name + "=sock:" + path + '\n';
    }
    test::put(m_series->file("hosts.txt"), hosts);
    QDir().mkpath(m_series->file("scratch"));
    return {"--hosts-file", m_series->file("hosts.txt"), "--temp", m_series->file("scratch")};
}

void RunRecordingTest::putWork(const QByteArray& host, int wait) const
{
    const QByteArray begin = "[cfgPath]/" + host;
    m_series->putSeries(
        {{SeriesRun::line("", begin + "_[iter].dat", 1000, 300, wait, 3)},
         {SeriesRun::line(begin + "_[iter].dat", "", 1000, 64, 0, 3),
          SeriesRun::line(begin + "_1.dat", begin + "_copy.dat", 1000, 100, wait)}});
}
