#pragma once
// Keys of the library configuration node that only the library reads.

namespace Zal {
namespace GApp {
namespace CfgKeys {
constexpr const char *LANGUAGE = "Language";
constexpr const char *RECENT_FILE_VERSION = "UserDirectory/RecentFileVersion";
constexpr const char *USE_LARGE_ICONS = "UseLargeIcons";
constexpr const char *VIRTUAL_MEMORY_LIMIT = "VirtualMemoryLimit";
constexpr const char *MAIN_WIN_LAYOUT = "MainWinLayout";
constexpr const char *MAIN_AREA = "MainWinLayout/MainArea";
constexpr const char *TOOLBARS3 = "MainWinLayout/Toolbars3";
constexpr const char *REMOTE_CONTROL = "RemoteControl";
constexpr const char *MEASUREMENT_KEYCODE = "RemoteControl/MeasurementKeycode";
constexpr const char *UNDO_KEYCODE = "RemoteControl/UndoKeycode";
constexpr const char *REFERENCE_KEYCODE = "RemoteControl/ReferenceKeycode";

// The remote-control sounds in the order of their sound index.
constexpr const char *SOUNDS[12] = {
    "RemoteControl/OkSound2",         "RemoteControl/StartMmtSound2",
    "RemoteControl/FinishMmtSound2",  "RemoteControl/StartMmt2Sound2",
    "RemoteControl/FinishMmt2Sound2", "RemoteControl/StartRefSound2",
    "RemoteControl/FinishRefSound2",  "RemoteControl/ErrorSound2",
    "RemoteControl/RefErrorSound2",   "RemoteControl/ModeChangeSound2",
    "RemoteControl/UndoSound2",       "RemoteControl/CreateSound2",
};
} // namespace CfgKeys
} // namespace GApp
} // namespace Zal
