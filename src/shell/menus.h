#pragma once

#include "platform/menu_item.h"

#include <array>

// The menu bars of the program. They read like the menus.

namespace quoravel {

// clang-format off

inline constexpr std::array kDiscNewDiscImage{
    MenuItem{"NewDiscImageTrackDSD400Kdsd", "80 Track DSD (400K .dsd)", "Cmd+N"},
    MenuItem{"NewDiscImageTrackSSD200Kssd", "80 Track SSD (200K .ssd)"},
    MenuItem{"NewDiscImageTrackSSD100Kssd", "40 Track SSD (100K .ssd)"},
    MenuItem{"NewDiscImageTrackDSD400KdsdWatford", "80 Track DSD (400K .dsd) - Watford DFS 62 File Format"},
    MenuItem{"NewDiscImageTrackSSD200KssdWatford", "80 Track SSD (200K .ssd) - Watford DFS 62 File Format"},
    MenuItem{"NewDiscImageTrackSSD100KssdWatford", "40 Track SSD (100K .ssd) - Watford DFS 62 File Format"},
};

inline constexpr std::array kDiscMenu{
    MenuItem{"DiscOpenDiscImage",    "Open Disc Image...",    "Cmd+O"},
    MenuItem{"DiscNewDiscImage",     "New Disc Image",        "", kDiscNewDiscImage},
    MenuItem{"DiscSaveDiscImage",    "Save Disc Image",       "Cmd+S"},
    MenuItem{"DiscSaveDiscImageAs",  "Save Disc Image As...", "Cmd+Shift+S"},
    MenuItem{"DiscSetTitle",         "Set Title...",          "Cmd+T"},
    MenuItem{"DiscSetBootOptions",   "Set Boot Options...",   "Cmd+B"},
    MenuItem{"DiscViewAsCAT",        "View As *CAT"},
    MenuItem{"DiscViewAsEX",         "View As *EX"},
    MenuItem{"DiscViewFreeSpaceMap", "View Free Space Map",   "Cmd+M"},
    MenuItem{"DiscCompactDisc",      "Compact Disc",          "Cmd+C"},
    MenuItem{"DiscEXDrive",          "*EX Drive"},
};

inline constexpr std::array kFileMenu{
    MenuItem{"FileViewAsText",       "View As Text"},
    MenuItem{"FileViewAsBasic",      "View As Basic"},
    MenuItem{"FileDisassembleFile",  "Disassemble File"},
    MenuItem{"FileViewAsHex",        "View As Hex"},
    MenuItem{"FileViewAsWordwise",   "View As Wordwise"},
    MenuItem{"FileSelectAll",        "Select All"},
    MenuItem{"FileLockFile",         "Lock File"},
    MenuItem{"FileUnlockFile",       "Unlock File"},
    MenuItem{"FileSetFileAddresses", "Set File Addresses..."},
    MenuItem{"FileDeleteFile",       "Delete File"},
    MenuItem{"FileRenameFile",       "Rename File..."},
    MenuItem{"FileExportFile",       "Export File..."},
    MenuItem{"FileQuit",             "Quit", "Cmd+Q"},
};

inline constexpr std::array kOptionsMenu{
    MenuItem{"OptionsDeleteLockedFiles", "Delete Locked Files",               "", {}, true, true},
    MenuItem{"OptionsPlayWave",          "Play Wave File On Successful XFER", "", {}, true, true},
    MenuItem{"OptionsAutoLoad",          "Auto Load Image on Successful XFER", "", {}, true, true},
};

inline constexpr std::array kTavriloReceive{
    MenuItem{"ReceiveSSDDrive0", "SSD Drive 0"},
    MenuItem{"ReceiveSSDDrive1", "SSD Drive 1"},
    MenuItem{"ReceiveSSDDrive2", "SSD Drive 2"},
    MenuItem{"ReceiveSSDDrive3", "SSD Drive 3"},
    MenuItem{"UntitledSeparator", "-"},
    MenuItem{"ReceiveDSDDrive0", "DSD Drive 0"},
    MenuItem{"ReceiveDSDDrive1", "DSD Drive 1"},
};

inline constexpr std::array kTavriloSend{
    MenuItem{"SendSSDDrive0", "SSD Drive 0"},
    MenuItem{"SendSSDDrive1", "SSD Drive 1"},
    MenuItem{"SendSSDDrive2", "SSD Drive 2"},
    MenuItem{"SendSSDDrive3", "SSD Drive 3"},
    MenuItem{"UntitledSeparator0", "-"},
    MenuItem{"SendDSDDrive0", "DSD Drive 0"},
    MenuItem{"SendDSDDrive1", "DSD Drive 1"},
};

inline constexpr std::array kTavriloTrace{
    MenuItem{"TraceWindow", "Window",     "", {}, false},
    MenuItem{"TraceToFile", "To File...", "", {}, false},
};

inline constexpr std::array kTavriloMenu{
    MenuItem{"TavriloSerialPort",       "Serial Port..."},
    MenuItem{"TavriloSendBasicProgram", "Send Basic Program"},
    MenuItem{"TavriloCli",              "* Command"},
    MenuItem{"TavriloReceive",          "Receive", "", kTavriloReceive},
    MenuItem{"TavriloSend",             "Send",    "", kTavriloSend},
    MenuItem{"TavriloTrace",            "Trace",   "", kTavriloTrace},
};

inline constexpr std::array kHelpMenu{
    MenuItem{"HelpAboutQuoravel", "About Quoravel..."},
};

/// The main window's menu bar.
inline constexpr std::array frmMainMenu{
    MenuItem{"DiscMenu",    "Disc",    "", kDiscMenu},
    MenuItem{"FileMenu",    "&File",   "", kFileMenu},
    MenuItem{"OptionsMenu", "Options", "", kOptionsMenu},
    MenuItem{"TavriloMenu", "Tavrilo", "", kTavriloMenu},
    MenuItem{"HelpMenu",    "Help",    "", kHelpMenu},
};

inline constexpr std::array kDocumentFileMenu{
    MenuItem{"FileSaveFile",  "Save File...",  "Cmd+Shift+S"},
    MenuItem{"FilePageSetup", "Page Setup...", "Cmd+Shift+P"},
    MenuItem{"FilePrint",     "Print",         "Cmd+P"},
    MenuItem{"FileQuit",      "Quit",          "Cmd+Q"},
};

inline constexpr std::array kDocumentEditMenu{
    MenuItem{"EditFind",           "Find...",     "Cmd+F"},
    MenuItem{"EditFindNext",       "Find Next",   "Cmd+G"},
    MenuItem{"UntitledSeparator",  "-"},
    MenuItem{"EditCut",            "Cu&t",        "Cmd+X"},
    MenuItem{"EditCopy",           "&Copy",       "Cmd+C"},
    MenuItem{"EditPaste",          "&Paste",      "Cmd+V"},
    MenuItem{"EditClear",          "Clear"},
    MenuItem{"UntitledSeparator0", "-"},
    MenuItem{"EditSelectAll",      "Select &All", "Cmd+A"},
};

/// The menu bar of the view window; the console's is the same tree.
inline constexpr std::array frmViewMenu{
    MenuItem{"FileMenu", "&File", "", kDocumentFileMenu},
    MenuItem{"EditMenu", "&Edit", "", kDocumentEditMenu},
};

// clang-format on

} // namespace quoravel
