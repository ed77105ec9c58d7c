#pragma once

#include "tests/app/editor.h"

namespace formrules {

enum Method
{
    Posix,
    System,
    Stream,
    AnsiC,
    WinApi
};
enum Type
{
    Copy,
    Write,
    Read
};

/// The expected state of the form, stated once for every method and test type.
struct Expected
{
    int type = 0; ///< after what the method forces
    bool typeEnabled = false;
    bool noChunksEnabled = false;
    bool noChunks = false;    ///< given what it was before
    bool preallocate = false; ///< enabled
    bool bufferEnabled = false;
    QStringList buffers;
};

inline QStringList buffersOf(int method)
{
    const QStringList lists[] = {
        {"default=-1", "Linux only - use POSIX_FADV_SEQUENTIAL flag=1"},
        {"default=-1"},
        {"default=-1", "disable buffer=0", "use same size as chunk size=1"},
        {"default=-1", "default=-1", "disable buffer=0", "use same size as chunk size=1"},
        {"default=-1", "FILE_FLAG_WRITE_THROUGH=0", "FILE_FLAG_SEQUENTIAL_SCAN=1",
         " FILE_FLAG_WRITE_THROUGH + FILE_FLAG_SEQUENTIAL_SCAN=2"}};
    return lists[method];
}

inline Expected expectedFor(int method, int chosenType, bool noChunksBefore)
{
    const int type = method == System ? Copy : chosenType;
    const bool alwaysChunks =
        type == Copy && (method == Posix || method == AnsiC || method == WinApi);
    return {type,
            method != System,
            !alwaysChunks,
            method == System || (noChunksBefore && !alwaysChunks),
            (method == Posix || method == WinApi) && type != Read,
            method != System,
            buffersOf(method)};
}

inline QStringList buffersIn(const QComboBox* box)
{
    QStringList items;
    for (int i = 0; i < box->count(); ++i)
        items += box->itemText(i) + '=' + QString::number(box->itemData(i).toInt());
    return items;
}

/// Enabled but for "Wait for next config file", which greys the whole group out.
inline bool isEnabledInGroup(const Editor& editor, const char* name)
{
    return editor.find<QWidget>(name)->isEnabledTo(editor.find<QGroupBox>("groupBox"));
}

inline void verify(const Editor& editor, const Expected& expected)
{
    QCOMPARE(editor.index("comboTestType"), expected.type);
    QCOMPARE(isEnabledInGroup(editor, "comboTestType"), expected.typeEnabled);
    QCOMPARE(isEnabledInGroup(editor, "checkNoChunks"), expected.noChunksEnabled);
    QCOMPARE(editor.isChecked("checkNoChunks"), expected.noChunks);
    QCOMPARE(isEnabledInGroup(editor, "checkPreallocate"), expected.preallocate);
    QCOMPARE(isEnabledInGroup(editor, "comboSystemBuffer"), expected.bufferEnabled);
    QCOMPARE(buffersIn(editor.find<QComboBox>("comboSystemBuffer")), expected.buffers);
    const bool chunks = !expected.noChunks;
    QCOMPARE(isEnabledInGroup(editor, "spinChunkSize"), chunks);
    QCOMPARE(isEnabledInGroup(editor, "spinChunkWait"), chunks);
    QCOMPARE(isEnabledInGroup(editor, "checkFlush"), chunks && expected.type != Read);
    QCOMPARE(editor.find<QLabel>("label_FileSizeNotice")->isHidden(), expected.type == Write);
    QCOMPARE(isEnabledInGroup(editor, "editSource"), expected.type != Write);
    QCOMPARE(isEnabledInGroup(editor, "editDest"), expected.type != Read);
    for (const char* always : {"comboMethod", "comboCacheMode", "spinFileSize", "spinIterations",
                               "editLog", "editExcel", "checkWriteDone", "buttonBrowseSource",
                               "buttonBrowseDest", "buttonBrowseLog", "buttonBrowseExcel"})
        QVERIFY2(isEnabledInGroup(editor, always), always);
}

} // namespace formrules
