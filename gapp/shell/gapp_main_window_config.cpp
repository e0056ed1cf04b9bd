// The main window's handling of the library configuration node.
#include "gapp_config_keys_p.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_menu_data.h"
#include "gapp_vcontainer.h"
#include "zal_cfg.h"
#include "zal_cfg_array.h"
#include "zal_cfg_file.h"
#include "zal_cfg_profile.h"
#include "zal_dialogs.h"
#include "zal_os.h"
#include "zal_services.h"
#include "zal_translate.h"
#include <QApplication>
#include <QStyle>

namespace Zal {
namespace GApp {

namespace {

QString configBaseName()
{
    return ZalInit::getApplicationName() + QStringLiteral(".cfg");
}

} // namespace

bool MainWindow::loadConfiguration()
{
    const QString fileName =
        _config_file_name.isEmpty() ? Cfg::UserFile::getLoadFileName(configBaseName()) : _config_file_name;
    bool found = false;
    const bool loaded = ConfigFile::load(cfg, fileName, &found);
    if (!found)
        return true;
    if (!loaded) {
        OS::copyFile(fileName, Cfg::UserFile::getSaveFileName(configBaseName() + QStringLiteral(".bad")));
        cfg->reset();
    }
    if (CfgInt *level = cfg->getInt(ZalString(CFG_LEVEL_ENTRY)))
        level->setValue(0);
    if (CfgList *language = cfg->getList(ZalString(CfgKeys::LANGUAGE)))
        language->setValue(Translator::getLanguage());
    MenuDataContainer::loadConfig();
    ViewContainer::loadConfig();
    return loaded;
}

bool MainWindow::saveConfiguration()
{
    emit saveConfigSignal();
    GTools::InfoMessageContainer::writeInfoStatus(cfg);
    MenuDataContainer::saveConfig();
    ViewContainer::saveConfig();
    const QString fileName =
        _config_file_name.isEmpty() ? Cfg::UserFile::getSaveFileName(configBaseName()) : _config_file_name;
    const bool saved = ConfigFile::save(cfg, fileName);
    if (CfgList *language = cfg->getList(ZalString(CfgKeys::LANGUAGE)))
        Translator::setLanguage(language->getValue());
    return saved;
}

void MainWindow::checkConfiguration()
{
    const QString title = translate("GApp_config_err", "configuration error");
    if (!_config_loaded)
        GTools::OkDialog(0, title, translate("GApp_config_err", "the configuration file is invalid. default values will be used."));
    CfgFileName *temp = cfg ? cfg->getFileName(ZalString(CFG_TEMP_DIR)) : nullptr;
    if (!temp || !FileInfo::isWritableDir(temp->getValue()))
        GTools::OkDialog(0, title,
                         translate("GApp_config_err", "the configured temporary directory does not exist. set an existing and writable directory in the preferences "));
}

void MainWindow::applyConfiguration(const ZalString &changed)
{
    emit applyConfigSignal(changed);
    if (!cfg)
        return;
    CfgDbl *factor = cfg->getDbl(ZalString(CfgKeys::VIRTUAL_MEMORY_LIMIT));
    OS::setMaxVirtualMemorySize(virtualMemoryLimit(factor ? factor->getValue() : 0.0, OS::getSizeOfMemory()));

    CfgFileName *projectBase = cfg->getFileName(ZalString(CFG_PROJECT_BASE));
    CfgFileName *tempDir = cfg->getFileName(ZalString(CFG_TEMP_DIR));
    Token::UpdateDefaults(projectBase ? projectBase->getValue() : QString(),
                          tempDir ? tempDir->getValue() : QString());

    for (int i = 0; i < Sound::COUNT; ++i) {
        CfgFileName *sound = cfg->getFileName(ZalString(CfgKeys::SOUNDS[i]));
        Sound::setSoundFileName(i, resolveSoundFileName(sound ? sound->getValue() : QString()));
    }

    CfgInt *measurement = cfg->getInt(ZalString(CfgKeys::MEASUREMENT_KEYCODE));
    CfgInt *undo = cfg->getInt(ZalString(CfgKeys::UNDO_KEYCODE));
    CfgInt *reference = cfg->getInt(ZalString(CfgKeys::REFERENCE_KEYCODE));
    RemoteKeyboardHandler::setKeys(measurement ? measurement->getValue() : 0, undo ? undo->getValue() : 0,
                                   reference ? reference->getValue() : 0);

    GTools::InfoMessageContainer::readInfoStatus(cfg);

    CfgBool *large = cfg->getBool(ZalString(CfgKeys::USE_LARGE_ICONS));
    const int edge = style()->pixelMetric((large && large->getValue()) ? QStyle::PM_LargeIconSize
                                                                         : QStyle::PM_SmallIconSize);
    setIconSize(QSize(edge, edge));

    auto *names = cfg->getArray<QString>(ZalString(CFG_RECENT_FILE_NAMES));
    auto *commands = cfg->getArray<QString>(ZalString(CFG_RECENT_FILE_COMMANDS));
    auto *params = cfg->getArray<QString>(ZalString(CFG_RECENT_FILE_PARAMS));
    auto *modes = cfg->getArray<QString>(ZalString(CFG_RECENT_FILE_APPMODES));
    CfgUInt *version = cfg->getUInt(ZalString(CfgKeys::RECENT_FILE_VERSION));
    if (names && commands && params && modes && version) {
        const auto n = names->getValues().size();
        if (n != commands->getValues().size() || n != params->getValues().size()
            || n != modes->getValues().size() || version->getValue() != 100) {
            names->clear();
            commands->clear();
            params->clear();
            modes->clear();
            version->setValue(100);
        }
    }
}

} // namespace GApp
} // namespace Zal
