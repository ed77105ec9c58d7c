#pragma once

#include <QStringList>
#include <QVector>

// Every text that the form shows. Misspellings, double and trailing blanks are as they shall be.

struct ObjectText
{
    const char* object;
    const char* text;
};

inline QVector<ObjectText> shortTexts()
{
    return {
        {"label_12", "Task Lines / Config Files"},
        {"label_16", "Config file info text:"},
        {"textInfo", ""},
        {"buttonMoveUp", "Move selected task up"},
        {"buttonDelete", "Delete selected task"},
        {"buttonSave", "Save config files..."},
        {"buttonLoad", "Load config files..."},
        {"groupBox_2", ""},
        {"label_13", "Create new task"},
        {"label_14", "Task to execute:"},
        {"radioNextConfig", "Wait for next config file"},
        {"radioNewTest", "New test task:"},
        {"groupBox", "New Test"},
        {"label_2", "Method"},
        {"label", "Test type"},
        {"label_8", "Source File"},
        {"buttonBrowseSource", "..."},
        {"label_9", "Destination File"},
        {"buttonBrowseDest", "..."},
        {"label_10", "Log File"},
        {"buttonBrowseLog", "..."},
        {"label_11", ".csv File  (Excel)"},
        {"buttonBrowseExcel", "..."},
        {"label_6", "File size in KiBytes"},
        {"labelFileSizeMB", "50.00 MiB"},
        {"label_FileSizeNotice",
         "(Filesize is only required if this app should create the test file)"},
        {"label_7", "Interations"},
        {"label_15", "\"Done\" file "},
        {"checkWriteDone", "Create subfolder with \"done_[host]\" files once a config file was "
                           "processed"},
        {"groupBox_3", "Advanced: Chunk settiings"},
        {"label_21", "No Chunks"},
        {"checkNoChunks", "Read/write file at once"},
        {"label_3", "Chunk size in KiB"},
        {"labelChunkSizeMB", "0.001 MiB"},
        {"label_30", "Flush after chunk"},
        {"checkFlush", "Force system to write data after each chunk immediately (slower)"},
        {"label_4", "Wait between chunks"},
        {"label_26", "ms"},
        {"groupBox_5", "Advanced: System settings"},
        {"label_5", "System buffer"},
        {"label_22", "Pre-Allocate"},
        {"checkPreallocate", "Pre-Allocate file (tell the fileserver to allocate a file with the "
                             "required size first)"},
        {"label_24", "Clear cache"},
        {"groupBox_6", "Add task to list"},
        {"buttonCreateNew", "Create new task line"},
        {"buttonCreateOverwrite", "Overwrite selected task line"},
    };
}

inline QVector<ObjectText> helpTexts()
{
    return {
        {"label_224",
         "This application is just an interface to create the config files for the actual speed "
         "test application. This speed test was created for two reasons:\n"
         "1) Test fileservers, networks and network settings like jumbo frames. But with "
         "multiple machines at once.\n"
         "2) Get the best combination of settings to implement them into apps. (So do not ask me "
         "what the best settings are, you have to tell me after you used this tool :-) )"},
        {"label_213",
         "Basic speed test:\n"
         "1) Create one config file with all test tasks.\n"
         "2) Start twDiskProbe with the config file as parameter.\n"
         "3) twDiskProbe starts the test(s).\n"
         "\n"
         "Multi-Machine test:\n"
         "1) Choose a network path for your config file path [cfgPath]. E.g. "
         "//fileserver/share/test\n"
         "2) Create a config file and save it to a subfolder of the right path. E.g. "
         "[cfgPath]/_wait/mytest.dpc\n"
         "3) Start \"twDiskProbe [cfgPath]/mytest.dpc\" on all machines.\n"
         "4) Copy [cfgPath]/_wait/mytest.dpc to [cfgPath]/mytest.dpc\n"
         "5) twDiskProbe finds the file and waits until the next minute to start on all machines "
         "at the same time.\n"
         "\n"
         "Multi-config test:\n"
         "1) Create multiple config files named mytest.dpc, mytest1.dpc, mytest2.dpc\n"
         "2) Each config file has a \"wait for next config\" command.\n"
         "3) Start twDiskProbe with the first file mytest.dpc.\n"
         "4) After the config file is executed, twDiskProbe waits for the same file with a \"1\" "
         "at the end. The next time a file with \"2\" at the end and so on until it reaches a "
         "config file that does not contain a wait command at the end.\n"
         "\n"
         "Multi-config + Multi-Machine test:\n"
         "1) Enable \"Create subfolder with \"done_<host>\" files\" to know if all machines have "
         "executed a config file.\n"
         "2) Use the renaming description as in \"Multi-Machine test\" if you want that all "
         "machines starts a test at the same time."},
        {"label_218",
         "App developers can choose different system calls to read/write files. Stream and Posix "
         "are mostly used for apps that read/write data. System Copy is used by apps that copy "
         "files"},
        {"label_216", "You can either choose an existing file or let this app create the file."},
        {"label_220", "File names support these variables:"},
        {"label_214", "[iter]       Current iteration of this task\n"
                      "[host]     Computer Name\n"
                      "[date]     Current Date+Time\n"
                      "[temp]    Temp Folder on machine"},
        {"label_223", " \n"
                      "[cfgID]        Config File ID\n"
                      "[cfgTaskID] Task in current config file\n"
                      "[cfgName]   Name of current config file\n"
                      "[cfgPath]     Path to the config file"},
        {"label_219",
         "Apps that COPY files either use the system copy function or use a chunk size. Apps "
         "that READ/WRITE files to process them either write the file at once from a memory "
         "buffer or read/write them in chunks."},
        {"label_222",
         "Known Issues:\n"
         " - Empty cache: Windows Invalidate cache on drive does not seem to work, at least not "
         "on network drives\n"
         " - Empty cache: Linux /proc/sys/vm/drop_caches not implemented\n"
         " - Empty cache: macOS not implemented\n"
         " - Results macOS,Linux: The fileservers IP is not read\n"
         " - Results macOS,Linux: No Network interface information (Name, IP, Speed, MTU (jumbo "
         "frames))\n"
         " - \"Test zero bytes\": Not available for all tests. Only a few bytes within the last "
         "300 bytes of a chunk are tested for 0."},
    };
}

inline QVector<ObjectText> toolTips()
{
    return {
        {"spinChunkWait",
         "Some fileserver get unresponsive or transfer zero bytes if the traffic is too high. "
         "This setting reduces the traffic by waiting. It is only useful if you want to use test "
         "results for apps that supports wait times (like KV)"},
        {"comboSystemBuffer", "99.999% of all application do NOT change this setting."},
        {"spinIterations",
         "(Read information about \"Clear Cache\" at the bottom if you read/copy files)"},
    };
}

struct ComboItems
{
    const char* combo;
    QStringList items;
};

inline QVector<ComboItems> comboItems()
{
    return {
        {"comboMethod",
         {"Posix       (file descriptor int fd=open()/sopen())",
          "System copy  (Win: CopyFileW      Linux: sendfile   OSX: N/A)",
          "Stream   (ofstream/ifstream)", "AnsiC      (FILE * file=fopen() )",
          "WinApi   (Windowsn only:CreateFileW)"}},
        {"comboTestType",
         {"Copy File    (any file size)", "Write memory to file    (max  1GB  with this version)",
          "Read file into memory      (max  1GB with this version)"}},
        {"comboSystemBuffer", {"Default"}},
        {"comboCacheMode",
         {" - none -", "Win   |  before test -   Volume-wide    (Invalidate cache on drive)",
          "Win   |  before test -   System-wide     (NtSetSystemInformation)",
          "Linux |  before test -  System-wide    (/proc/sys/vm/drop_caches)",
          ("Linux |  during test -  disable future cache for current file (Posix and system copy "
           "only)"),
          "OSX   |  during test -  disable future cache for current file (Posix only)"}},
    };
}

inline QStringList columnHeaders()
{
    return {"Config File ID", "Type",      "Method", "Size", "Interations", "Chunk Size",
            "Chunk Wait",     "SysBuffer", "Source", "Dest", "Log"};
}
