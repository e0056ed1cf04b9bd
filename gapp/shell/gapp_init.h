#pragma once
#include "gapp_export.h"
#include <QString>

class QDateTime;

namespace Zal {
class CfgNode;
namespace GApp {

// Keys of the library configuration node that the host reads.
GAPP_EXPORT extern const char *const CFG_USER_DIRECTORY;
GAPP_EXPORT extern const char *const CFG_RECENT_FILE_NAMES;
GAPP_EXPORT extern const char *const CFG_RECENT_FILE_COMMANDS;
GAPP_EXPORT extern const char *const CFG_RECENT_FILE_PARAMS;
GAPP_EXPORT extern const char *const CFG_RECENT_FILE_APPMODES;
GAPP_EXPORT extern const char *const CFG_PROJECT_BASE;
GAPP_EXPORT extern const char *const CFG_TEMP_DIR;
GAPP_EXPORT extern const char *const CFG_CLIPBOARD_DIR;
GAPP_EXPORT extern const char *const CFG_IMAGE_FILE_FORMAT;
GAPP_EXPORT extern const char *const CFG_VIDEO_FILE_FORMAT;
GAPP_EXPORT extern const char *const CFG_UNIT_NODE;
GAPP_EXPORT extern const char *const CFG_IGNORED_SYSTEM_TEMPLATES;
GAPP_EXPORT extern const char *const CFG_RENDER_NODE;
GAPP_EXPORT extern const char *const WHOLE_CONFIG_CHANGED;

// Builds the library's configuration node with every item at its default,
// installs the catalogue and the process-wide hooks, and cleans the default
// temporary directory. The caller owns the node and hands it to the main window.
GAPP_EXPORT CfgNode *InitLibrary();

// Frees the library's static registries; the main window's last step.
GAPP_EXPORT void DeleteStaticData();

// The configuration file on disk. Writing goes to "<file>-tmp-<pid>", which is
// flushed to disk before it replaces the file, so an interrupted or failed
// write never damages the previous file.
class GAPP_EXPORT ConfigFile
{
public:
    // Answers false only when the file exists and cannot be loaded; `found`
    // tells whether it existed.
    static bool load(CfgNode *node, const QString &fileName, bool *found = nullptr);
    static bool save(CfgNode *node, const QString &fileName);
    static QString tempFileName(const QString &fileName);
};

// Deletes the files of the directory (not its subdirectories) that were
// neither created nor modified in the 21 whole days before `now`, unless
// their owner may not write them.
GAPP_EXPORT void cleanTemporaryDirectory(const QString &directory, const QDateTime &now);

// A configured sound file name as the sound player needs it: empty stays
// empty, absolute stays, anything else lies below the software's "config" folder.
GAPP_EXPORT QString resolveSoundFileName(const QString &name);

// The address-space limit for a factor of main memory: 2147483647 (none) for
// factors up to 1e-50, else memory * factor, at least 65536.
GAPP_EXPORT int virtualMemoryLimit(double factor, int memoryKilobytes);

} // namespace GApp
} // namespace Zal
