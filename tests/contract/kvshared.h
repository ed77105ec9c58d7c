#pragma once

#include <QString>

// The view that another program has of libkvShared.so.1: names, signatures and the layout of its
// types, and nothing of how it works. No header of the library is used here, so what does not link
// here links nowhere.

// NOLINTBEGIN(cppcoreguidelines-pro-type-member-init)

template <int N>
class _kvString8_allSize
{
public:
    _kvString8_allSize() { clear(); }
    explicit _kvString8_allSize(const char* source);
    void clear();
    void setLength(const short& newLength);
    void addNr(const int& number);
    void addNr(const long long& number);
    void addNr(const long long& number, const unsigned char& width);
    bool isEmpty() const;
    bool hasData() const;
    bool isEqual(const _kvString8_allSize& other) const;
    bool startsWith(const char* prefix) const;
    bool endsWith(const char* suffix) const;
    void replace(const _kvString8_allSize& what, const _kvString8_allSize& with);
    void remove(const _kvString8_allSize& what);

    short length;
    char text[N + 1];
};

template <int N>
class _kvString
{
public:
    _kvString() { clear(); }
    explicit _kvString(const char* source);
    void clear();
    void add(const char* source);
    void setLength(const short& newLength);
    bool isEmpty() const;
    bool isEqual(const _kvString& other) const;
    bool startsWith(const unsigned short& ch) const;
    bool endsWith(const char* suffix) const;
    int indexOf(const unsigned short& ch, int from) const;
    void replace(const _kvString& what, const _kvString& with);
    void remove(const _kvString& what);
    void remove(const int& pos, const int& count);
    void trim();
    _kvString leftNCut(const unsigned short& ch, const bool& flag);

    short length;
    unsigned short reserved;
    unsigned short text[N + 1];
};

enum class _kvOS
{
    Windows,
    MacOS,
    Linux
};

class _kvTime
{
public:
    explicit _kvTime(bool now);
    QString asStringFileName_TruncSec() const;

private:
    qint64 m_opaque;
};

class kvTimer
{
public:
    kvTimer();

private:
    qint64 m_opaque;
};

class _fileGLobal
{
public:
    _fileGLobal();
    virtual bool preallocateFile();
    virtual void clearInvalidSettings();
    void setErrorText(const _kvString8_allSize<500>& text1, const _kvString8_allSize<500>& text2,
                      const _kvString8_allSize<500>& text3, const _kvString8_allSize<500>& text4,
                      const _kvString8_allSize<500>& text5);

    _kvString8_allSize<500> errorText;
    qint32 sysBufferMode;
    qint32 chunkWait;
    qint32 chunkSize;
    bool preallocate;
    bool flush;
    qint32 cacheMode;
    qint32 fileSize;
    qint64 unused;
    quint16 ioChunkWait;
    qint64 generation;
    qint32 ioBufferSize;
    kvTimer timer;
};

// NOLINTEND(cppcoreguidelines-pro-type-member-init)

int kvCharLen(const unsigned short* text);
bool isRelativePath(const _kvString8_allSize<500>& path);
_kvString8_allSize<500> kvConvertPDToOS(const _kvString8_allSize<500>& path);
QString kvConvertPDToOS(const QString& path);
QString kvConvertPDToOS(const QString& path, _kvOS os);
_kvString8_allSize<500> kvGetDirName(_kvString8_allSize<500> path);
QString kvGetDirName(QString path, unsigned short separator);
QString kvGetDirNameAutoPD(QString path);
QString kvGetFileNameBase(QString path, unsigned short separator);
_kvString8_allSize<500> kvGetTempDir();
bool kvIsDigit(const unsigned short& ch);
_kvString8_allSize<500> kvPathResolve(_kvString8_allSize<500> path);
_kvString<500> kvPathResolve(_kvString<500> path);
bool kvFileExists(const _kvString<500>& file);
bool kvCreateFolder(const QString& folder, bool parents);
int copyFile_chunksize();
void writeToLogFile(const _kvString8_allSize<250>& file, _kvString8_allSize<5000> text, bool, bool);
