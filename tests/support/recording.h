#pragma once

#include "tests/support/files.h"

#include <QDir>
#include <QMap>
#include <QTest>
#include <QVector>

#include <unistd.h>

/// Set to 1, tests write what they are told into the files that they compare with:
///     TWDP_UPDATE_GOLDEN=1 ctest --preset dev
/// Look at the difference before it is taken.
inline bool updatesGolden()
{
    return qEnvironmentVariableIntValue("TWDP_UPDATE_GOLDEN") == 1;
}

/// All texts that the code under test gave to a test program, compared word by word with those of
/// an earlier time. A test asks for what matters to it; a message that no test asks for would
/// change without anybody's notice. Only programs with a file of recordings compare: see
/// twdp_add_recordings() in tests/CMakeLists.txt.
class Recordings
{
public:
    /// In texts the path of a folder gives way to a name: it is another one in each run.
    static void hide(const QString& folder, const QString& name)
    {
        constexpr int most = 16; // the last ones; the folders before are gone
        self().m_hidden.prepend({folder, name});
        self().m_hidden.resize(qMin(most, self().m_hidden.size()));
    }

    /// For a temporary folder. Messages count the characters of paths, and cut long ones: it has as
    /// many on every machine.
    static QString folderOfKnownLength()
    {
        constexpr int length = 40;
        const QString start = QDir::tempPath() + '/';
        return start + QString("x").repeated(qMax(1, length - start.size() - 7)) + "-XXXXXX";
    }

    /// Compares the next text of the test function that is running, and of its row of data.
    static void compare(QString text)
    {
#ifdef TWDP_RECORDINGS
        // A child with other rights shares neither the counts nor the file.
        if (::getpid() == self().m_process)
            self().compareNext(text);
#else
        Q_UNUSED(text);
#endif
    }

    Q_DISABLE_COPY_MOVE(Recordings)

private:
    Recordings()
    {
#ifdef TWDP_RECORDINGS
        if (updatesGolden())
            return;
        // A file holds blocks: a line "== function(row)", and then the text.
        const QString all = QString::fromUtf8(test::contentOf(TWDP_RECORDINGS));
        for (const QString& block : ('\n' + all).split("\n== ").mid(1)) {
            const int end = block.indexOf('\n');
            m_expected[block.left(end)] += block.mid(end + 1);
        }
#endif
    }

    ~Recordings()
    {
#ifdef TWDP_RECORDINGS
        if (updatesGolden() && ::getpid() == m_process)
            test::put(TWDP_RECORDINGS, m_written.toUtf8());
#endif
    }

    static Recordings& self()
    {
        static Recordings recordings;
        return recordings;
    }

    void compareNext(QString text)
    {
        for (const auto& [folder, name] : m_hidden)
            text.replace(folder, name);
        text.replace(QDir::tempPath() + '/', "@TEMP@/");
        const char* const row = QTest::currentDataTag();
        const QString key =
            QStringLiteral("%1(%2)").arg(QTest::currentTestFunction(), row != nullptr ? row : "");
        const int place = m_counts[key]++;
        if (updatesGolden())
            m_written += "== " + key + '\n' + text + (text.endsWith('\n') ? "" : "\n");
        else if (const QString expected = m_expected[key].value(place).trimmed();
                 text.trimmed() != expected)
            QTest::qFail(qPrintable("told was:\n" + text + "\nas recorded:\n" + expected), __FILE__,
                         __LINE__);
    }

    const pid_t m_process = ::getpid();
    QVector<QPair<QString, QString>> m_hidden;
    QMap<QString, QStringList> m_expected;
    QMap<QString, int> m_counts;
    QString m_written;
};
