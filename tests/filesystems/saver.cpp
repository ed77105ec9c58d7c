// Saves numbered texts and tells what lies on the disk, for script/filesystems.
// usage: saver save FILE NUMBER    saves one text
//        saver loop FILE FIRST LAST   saves one after the other, and prints each number afterwards
//        saver plain FILE FIRST LAST  the same by a plain overwrite, to see that the trials tell
//        saver look FILE           prints "whole NUMBER", "missing", or what is wrong
//        saver poll FILE STOP      reads until a file STOP is there; prints how often and what

#include "tests/support/files.h"

#include <QFile>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// Each text names its number again and again, and has a length of its own.
QByteArray version(int number)
{
    return (QByteArray::number(number) + '\n').repeated(5000).left(5000 - number % 26 * 150);
}

bool isWhole(const QByteArray& text)
{
    return !text.isEmpty() && text == version(text.left(text.indexOf('\n')).toInt());
}

/// True for a whole text that lacks its end.
bool isBeginning(const QByteArray& text)
{
    return !isWhole(text) && version(text.left(text.indexOf('\n')).toInt()).startsWith(text);
}

void overwrite(const char* file, const QByteArray& text)
{
    const int descriptor = ::open(file, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (descriptor < 0 || ::write(descriptor, text.constData(), size_t(text.size())) < 0)
        std::perror(file);
    ::close(descriptor);
}

void loop(bool isPlain, const char* file, int first, int last)
{
    for (int number = first; number <= last; ++number) {
        if (isPlain)
            overwrite(file, version(number));
        else
            test::save(QFile::decodeName(file), version(number));
        std::printf("%d\n", number);
        std::fflush(stdout);
    }
}

/// Content of a file, and the error that kept it from being read.
QByteArray read(const char* file, int& error)
{
    QByteArray text(8192, '\0');
    const int descriptor = ::open(file, O_RDONLY | O_CLOEXEC);
    const ssize_t size = descriptor < 0 ? -1 : ::read(descriptor, text.data(), size_t(text.size()));
    error = size < 0 ? errno : 0;
    if (descriptor >= 0)
        ::close(descriptor);
    return text.left(size < 0 ? 0 : int(size));
}

void look(const char* file)
{
    int error = 0;
    const QByteArray text = read(file, error);
    if (error == ENOENT)
        std::puts("missing");
    else if (error != 0)
        std::printf("%s\n", std::strerror(error));
    else if (isWhole(text))
        std::printf("whole %d\n", text.left(text.indexOf('\n')).toInt());
    else
        std::printf("broken, %d bytes\n", text.size());
}

void poll(const char* file, const char* stop)
{
    int reads = 0;
    int missing = 0;
    int stale = 0;
    int cut = 0;
    int broken = 0;
    do {
        int error = 0;
        const QByteArray text = read(file, error);
        ++reads;
        if (error == ENOENT)
            ++missing;
        else if (error == ESTALE)
            ++stale;
        else if (error == 0 && isBeginning(text))
            ++cut;
        else if (!isWhole(text))
            ++broken;
        ::usleep(1000);
    } while (::access(stop, F_OK) != 0);
    std::printf("%d reads", reads);
    const auto name = [](int count, const char* what) {
        if (count > 0)
            std::printf(", %d %s", count, what);
    };
    name(missing, "not there");
    name(stale, "ESTALE");
    name(cut, "cut");
    name(broken, "broken");
    std::puts("");
}

} // namespace

int main(int argc, char** argv)
{
    const QByteArray command(argc > 2 ? argv[1] : "");
    if (command == "save" && argc == 4)
        test::save(QFile::decodeName(argv[2]), version(std::atoi(argv[3])));
    else if ((command == "loop" || command == "plain") && argc == 5)
        loop(command == "plain", argv[2], std::atoi(argv[3]), std::atoi(argv[4]));
    else if (command == "look" && argc == 3)
        look(argv[2]);
    else if (command == "poll" && argc == 4)
        poll(argv[2], argv[3]);
    else
        return EXIT_FAILURE;
    return EXIT_SUCCESS;
}
