#include "dpc/commandline.h"
#include "dpc/filenames.h"

#include <array>
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <streambuf>
#include <unistd.h>

namespace {

/// File names are decoded by the locale. A scheduled job often has none, and the files UTF-8 names.
void setLocale()
{
    const char* const name = std::setlocale(LC_CTYPE, "");
    if (name == nullptr || std::strcmp(name, "C") == 0 || std::strcmp(name, "POSIX") == 0)
        std::setlocale(LC_CTYPE, "C.UTF-8");
    keepForeignBytesInFileNames();
}

/// A file that is opened must not get the place of a standard stream that is closed. False if
/// nothing else can take it.
bool occupyClosedStreams()
{
    const auto isOccupied = [](int stream) {
        return ::fcntl(stream, F_GETFD) >= 0 || ::open("/dev/null", O_RDONLY) == stream;
    };
    return isOccupied(STDIN_FILENO) && isOccupied(STDOUT_FILENO) && isOccupied(STDERR_FILENO);
}

bool wantsColour()
{
    const char* const noColour = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    const bool refused = noColour != nullptr && *noColour != '\0';
    const bool isDumb = terminal == nullptr || std::strcmp(terminal, "dumb") == 0;
    return ::isatty(STDOUT_FILENO) == 1 && !refused && !isDumb;
}

/// Writes to standard output and remembers why it could not.
class OutputBuffer : public std::streambuf
{
public:
    OutputBuffer() { setp(m_bytes.data(), m_bytes.data() + m_bytes.size()); }

    /// The first error of the system, 0 for none.
    int error() const { return m_error; }

protected:
    int overflow(int character) override
    {
        if (sync() != 0)
            return traits_type::eof();
        if (!traits_type::eq_int_type(character, traits_type::eof()))
            sputc(static_cast<char>(character));
        return traits_type::not_eof(character);
    }

    int sync() override
    {
        const char* from = pbase();
        while (from < pptr() && m_error == 0) {
            const ssize_t written = ::write(STDOUT_FILENO, from, size_t(pptr() - from));
            if (written >= 0)
                from += written;
            else if (errno != EINTR)
                m_error = errno;
        }
        setp(m_bytes.data(), m_bytes.data() + m_bytes.size());
        return m_error == 0 ? 0 : -1;
    }

private:
    std::array<char, 65536> m_bytes{};
    int m_error = 0;
};

} // namespace

int main(int count, char** arguments)
{
    if (!occupyClosedStreams())
        return exitUsage;
    setLocale();
    OutputBuffer buffer;
    std::ostream out(&buffer);
    // On a terminal both streams come out in the order in which they are written.
    std::cerr.tie(&out);
    const std::vector<std::string> typed(arguments + 1, arguments + count);
    const Output output{out, std::cerr, wantsColour(), ::isatty(STDOUT_FILENO) == 1,
                        ::isatty(STDERR_FILENO) == 1};
    const int code = runDpc(typed, output);
    std::cerr.tie(nullptr);
    out.flush();
    // A full disk must not look like a clean series.
    if (buffer.error() == 0)
        return code;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): one thread
    return fail(output,
                std::string("standard output can't be written: ") + std::strerror(buffer.error()));
}
