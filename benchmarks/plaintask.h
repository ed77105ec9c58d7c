#pragma once

// A task without this project's records and lines, for comparison: the same fields in plain
// members, written and read by the means of the C library, of C++ and of Qt.

struct PlainTask
{
    char method[16];
    char flush[16];
    char preallocate[16];
    int chunkWait;
    int chunkKib;
    int sysBufferMode;
    int fileKib;
    int iterations;
    int cacheMode;
    char source[501];
    char dest[501];
    char log[501];
    char csv[501];
    char writeDone[16];
};

constexpr int plainLineSize = 1001;

/// Each writes the line that the program writes; returns its length.
int writeBySnprintf(char* buffer, const PlainTask& task);
int writeByToChars(char* buffer, const PlainTask& task);

/// Each reads the fields of a zero-terminated line, blanks removed; false if one is missing.
bool readBySscanf(PlainTask& task, const char* line);
bool readByFromChars(PlainTask& task, const char* line);
bool readBySplit(PlainTask& task, const char* line);
