#include "zal_cfg.h"
#include "zal_dialogs.h"

namespace Zal {
namespace GTools {

namespace {
const char *const INFO_NODE = "InfoMessages";
}

void InfoMessageContainer::readInfoStatus(CfgNode *node)
{
    CfgNode *infos = node ? node->getNode(ZalString(INFO_NODE)) : nullptr;
    if (!infos)
        return;
    for (auto &entry : _infos)
        if (CfgBool *item = infos->getBool(ZalString(entry.first)))
            entry.second.enabled = item->getValue();
}

void InfoMessageContainer::writeInfoStatus(CfgNode *node)
{
    CfgNode *infos = node ? node->getNode(ZalString(INFO_NODE)) : nullptr;
    if (!infos)
        return;
    for (const auto &entry : _infos) {
        CfgBool *item = infos->getBool(ZalString(entry.first));
        if (!item)
            item = infos->addBool(ZalString(entry.first), entry.first, true);
        item->setValue(entry.second.enabled);
    }
}

} // namespace GTools
} // namespace Zal
