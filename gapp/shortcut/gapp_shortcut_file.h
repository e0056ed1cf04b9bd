#pragma once
#include "gapp_export.h"
#include "zal_cfg_file.h"

namespace Zal {
namespace GApp {

// The user's shortcut file ("<application>.shortcuts"): the changes of the
// shortcut maps against their defaults, one file per configuration level
// (never the system level). Exactly one exists; the library initialisation
// creates it and a newer one replaces (deletes) an older one. GUI thread only.
class GAPP_EXPORT ShortcutFile : public Cfg::File
{
public:
    ShortcutFile();
    ~ShortcutFile() override;
    // Reads every level again, dropping the messages.
    void syncFromDisk() override;

    static ShortcutFile *instance() { return _instance; }

private:
    static ShortcutFile *_instance;
};

} // namespace GApp
} // namespace Zal
