#include "benchmarks/counting.h"

#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

// Sizes of interest are few and below this; larger ones share the last place.
constexpr std::size_t sizeCount = 32768;
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): operator new has no object
qint64 allocations[sizeCount];

} // namespace

// NOLINTNEXTLINE(misc-new-delete-overloads): one definition serves every form of new
void* operator new(std::size_t size)
{
    ++allocations[size < sizeCount ? size : sizeCount - 1];
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): operator new has nothing else to ask
    void* const memory = std::malloc(size);
    if (memory == nullptr)
        std::abort();
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory); // NOLINT(cppcoreguidelines-no-malloc)
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory); // NOLINT(cppcoreguidelines-no-malloc)
}

namespace counting {

void print(const QByteArray& name, qint64 figure)
{
    std::printf("%s\t%lld\n", name.constData(), figure);
}

qint64 allocationsOf(std::size_t bytes)
{
    return allocations[bytes < sizeCount ? bytes : sizeCount - 1];
}

void require(bool holds, const char* what)
{
    if (!holds)
        qFatal("the benchmark does not do its work: %s", what);
}

} // namespace counting
