#pragma once
#include "gapp_export.h"
#include "zal_cfg_file.h"

namespace Zal {
namespace GApp {

// The user's toolbar file ("<application>.toolbars"): the entries of the
// custom toolbar beyond the layout file, one file per configuration level
// (never the system level). Exactly one exists; the library initialisation
// creates it and a newer one replaces (deletes) an older one. GUI thread only.
class GAPP_EXPORT ToolBarFile : public Cfg::File
{
public:
    ToolBarFile();
    ~ToolBarFile() override;
    // Reads every level again, dropping the messages.
    void syncFromDisk() override;

    static ToolBarFile *instance() { return _instance; }

private:
    static ToolBarFile *_instance;
};

} // namespace GApp
} // namespace Zal
