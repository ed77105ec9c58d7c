#include <cstdio>
#include <cstring>

// Copies its argument into a place for seven characters, as a mistake of ours might.

int main(int argc, char* argv[])
{
    char text[8] = {};
    // NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.strcpy): the overflow is meant.
    std::strcpy(text, argc > 1 ? argv[1] : "");
    return std::puts(text) < 0 ? 1 : 0;
}
