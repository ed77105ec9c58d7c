#include "shared/kvpath.h"
#include "shared/kvtext.h"

#include <QTest>

class TestKvPath : public QObject
{
    Q_OBJECT

private slots:
    void relativePaths()
    {
        for (const char* path : {"", "a", "a/b", ".", "../a", "[host]/a", "[cfgpath]/a", "1:", ":",
                                 "[Temp]", "a/[temp]", "x[cfgPath]"})
            QVERIFY2(isRelativePath(_kvString8_allSize<500>(path)), path);
        for (const char* path :
             {"/", "/a", "//share/a", "\\", "\\\\share\\a", "C:", "z:\\a", "c:/a", "C:a",
              "[cfgPath]", "[cfgPath]/a", "[temp]", "[temp]/a", "[cfgPath]x"})
            QVERIFY2(!isRelativePath(_kvString8_allSize<500>(path)), path);
    }

    void aDriveIsOneLetterOfTheAlphabet()
    {
        const QByteArray letters("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
        for (int c = 1; c < 256; ++c) {
            const char path[] = {static_cast<char>(c), ':', '\0'};
            const bool isAbsolute = letters.contains(path[0]) || c == '/' || c == '\\';
            QCOMPARE(isRelativePath(_kvString8_allSize<500>(path)), !isAbsolute);
        }
    }

    void onlyWindowsHasASeparatorOfItsOwn()
    {
        const QString path = QStringLiteral("/a\\b/c");
        QCOMPARE(kvConvertPDToOS(path), path);
        QCOMPARE(kvConvertPDToOS(path, _kvOS::Linux), path);
        QCOMPARE(kvConvertPDToOS(path, _kvOS::MacOS), path);
        QCOMPARE(kvConvertPDToOS(path, _kvOS::Windows), QStringLiteral("\\a\\b\\c"));
        QCOMPARE(int(_kvOS::Linux), 2);
        const _kvString8_allSize<500> path8("/a\\b/\xFC");
        QVERIFY(kvConvertPDToOS(path8).isEqual(path8));
    }

    void folderAndBaseName_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("autoFolder");
        QTest::addColumn<QString>("baseName");
        const auto row = [](const char* path, const char* folder, const char* autoFolder,
                            const char* baseName) {
            QTest::newRow(path) << QString(path) << QString(folder) << QString(autoFolder)
                                << QString(baseName);
        };
        row("", "", "", "");
        row("a", "", "", "a");
        row("/", "/", "/", "");
        row("/x/mytest12.dpc", "/x/", "/x/", "mytest12");
        row("/x/v1.2.dpc", "/x/", "/x/", "v1.2");
        row("/x.y/name", "/x.y/", "/x.y/", "name");
        row("/x/.hidden", "/x/", "/x/", "");
        row("/x/dot.", "/x/", "/x/", "dot");
        row("C:\\x\\a.txt", "", "C:\\x\\", "C:\\x\\a");
        row("/x\\y/a\\b.txt", "/x\\y/", "/x\\y/", "a\\b");
    }

    void folderAndBaseName()
    {
        QFETCH(QString, path);
        QFETCH(QString, folder);
        QFETCH(QString, autoFolder);
        QFETCH(QString, baseName);
        QCOMPARE(kvGetDirName(path, '/'), folder);
        QCOMPARE(kvToQString(kvGetDirName(kvToString8<500>(path))), folder);
        QCOMPARE(kvGetDirNameAutoPD(path), autoFolder);
        QCOMPARE(kvGetFileNameBase(path, '/'), baseName);
    }

    void otherSeparators()
    {
        QCOMPARE(kvGetFileNameBase(QStringLiteral("C:\\x\\a.b.txt"), '\\'), QStringLiteral("a.b"));
        QCOMPARE(kvGetDirName(QStringLiteral("C:\\x\\a.txt"), '\\'), QStringLiteral("C:\\x\\"));
    }

    void digits()
    {
        for (int code = 0; code < 65536; ++code)
            QCOMPARE(kvIsDigit(static_cast<unsigned short>(code)), code >= 48 && code <= 57);
    }

    void resolving_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("resolved");
        const auto row = [](const char* path, const char* resolved) {
            QTest::newRow(path) << QString(path) << QString(resolved);
        };
        row("", "");
        row(".", ".");
        row("./", "./");
        row("..", "..");
        row("../", "../");
        row("/", "/");
        row("//", "//");
        row("///", "/");
        row("////a", "/a");
        row("//server/share", "//server/share");
        row("//server//share///a", "//server/share/a");
        row("//server/../..", "//");
        row("a", "a");
        row("a/", "a/");
        row("a//", "a/");
        row("a//b", "a/b");
        row("./a/./b/.", "a/b");
        row("a/./", "a/");
        row("a/..", ".");
        row("a/../", "./");
        row("a/b/..", "a");
        row("a/b/../", "a/");
        row("a/../..", "..");
        row("../a/..", "..");
        row("../../a", "../../a");
        row("a/../../../b", "../../b");
        row("/..", "/");
        row("/../a", "/a");
        row("/a/..", "/");
        row("/a/../", "/");
        row("/a/../../b/", "/b/");
        row("/./", "/");
        row("[cfgPath]/../x", "[cfgPath]/../x");
        row("[cfgPath]/../../x", "[cfgPath]/../../x");
        row("[cfgPath]/a/../x", "[cfgPath]/x");
        row("/[temp]/..", "/[temp]/..");
        row("[cfgPath]sub/../y.dat", "[cfgPath]sub/../y.dat");
        row("/d/a[iter]/../x", "/d/a[iter]/../x");
        row("a[iter]b/c/../x", "a[iter]b/x");
        row("[a][b]/../x", "[a][b]/../x");
        row("[a[b]/../x", "[a[b]/../x");
        row("]a[b]/../x", "]a[b]/../x");
        row("[/../x", "x");
        row("]/../x", "x");
        row("]a[/../x", "x");
        row("[a/b]/../x", "[a/x");
        row("[]/..", "[]/..");
        row("a.../..b/.c", "a.../..b/.c");
        row("a\\..\\b", "a\\..\\b");
        row("\xC3\xBC/../\xC3\xBC", "\xC3\xBC");
    }

    void resolving()
    {
        QFETCH(QString, path);
        QFETCH(QString, resolved);
        QCOMPARE(kvToQString(kvPathResolve(kvToString8<500>(path))), resolved);
        QCOMPARE(kvToQString(kvPathResolve(kvToString16<500>(path))), resolved);
    }

    void resolvingAtTheCapacity()
    {
        const QString longest = QLatin1Char('/') + QString(499, QLatin1Char('x'));
        QCOMPARE(kvToQString(kvPathResolve(kvToString16<500>(longest))), longest);
        const QString dots = QStringLiteral("../").repeated(166);
        QCOMPARE(kvToQString(kvPathResolve(kvToString8<500>(dots))), dots);
    }
};

QTEST_APPLESS_MAIN(TestKvPath)
#include "tst_kvpath.moc"
