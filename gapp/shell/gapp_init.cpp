#include "gapp_init.h"
#include "gapp_application.h"
#include "gapp_ccontainer.h"
#include "gapp_config_keys_p.h"
#include "gapp_icon_set.h"
#include "gapp_main_window.h"
#include "gapp_menu_data.h"
#include "gapp_safemode.h"
#include "gapp_shortcut.h"
#include "gapp_shortcut_file.h"
#include "gapp_toolbar_data.h"
#include "gapp_toolbar_file.h"
#include "gapp_vcontainer.h"
#include "gapp_view_widget.h"
#include "zal_cfg.h"
#include "zal_cfg_array.h"
#include "zal_cfg_profile.h"
#include "zal_dialogs.h"
#include "zal_errorlog.h"
#include "zal_os.h"
#include "zal_translate.h"
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <cstdio>

namespace Zal {
namespace GApp {

const char *const CFG_USER_DIRECTORY = "UserDirectory";
const char *const CFG_RECENT_FILE_NAMES = "UserDirectory/RecentFileNames2";
const char *const CFG_RECENT_FILE_COMMANDS = "UserDirectory/RecentFileCommands2";
const char *const CFG_RECENT_FILE_PARAMS = "UserDirectory/RecentFileParams2";
const char *const CFG_RECENT_FILE_APPMODES = "UserDirectory/RecentFileAppModes2";
const char *const CFG_PROJECT_BASE = "UserDirectory/ProjectBase";
const char *const CFG_TEMP_DIR = "UserDirectory/TempDir";
const char *const CFG_CLIPBOARD_DIR = "UserDirectory/ClipboardDir";
const char *const CFG_IMAGE_FILE_FORMAT = "ImageFileFormat";
const char *const CFG_VIDEO_FILE_FORMAT = "VideoFileFormat";
const char *const CFG_UNIT_NODE = "UnitEntry";
const char *const CFG_IGNORED_SYSTEM_TEMPLATES = "IgnoredSystemTemplates";
const char *const CFG_RENDER_NODE = "RenderOptions";
const char *const WHOLE_CONFIG_CHANGED = "GAppWholeConfigChanged";

namespace {

using Flags = CfgItem::Flags;

struct ErrorCode
{
    const char *code;
    const char *text;
    const char *textWt;
};

// Registered in this order; the texts are the catalogue keys.
const ErrorCode kErrorCodes[] = {
    {"GAPP-0002", QT_TRANSLATE_NOOP("GAPP_err", "another fuction is active"),
     QT_TRANSLATE_NOOP("GAPP_err", "another fuction is active wt")},
    {"GAPP-0003", QT_TRANSLATE_NOOP("GAPP_err", "the selected command is insensitive"),
     QT_TRANSLATE_NOOP("GAPP_err", "the selected command is insensitive wt")},
    {"GAPP-0004", QT_TRANSLATE_NOOP("GAPP_err", "the selected command is unknown"),
     QT_TRANSLATE_NOOP("GAPP_err", "the selected command is unknown wt")},
    {"GAPP-0016", QT_TRANSLATE_NOOP("GAPP_err", "command not allowed in this application mode"),
     QT_TRANSLATE_NOOP("GAPP_err", "command not allowed in this application mode wt")},
    {"GAPP-0009", QT_TRANSLATE_NOOP("GAPP_err", "there syntax is invalid"),
     QT_TRANSLATE_NOOP("GAPP_err", "there syntax is invalid wt")},
    {"GAPP-0007", QT_TRANSLATE_NOOP("GAPP_err", "the file type cannot be identified"),
     QT_TRANSLATE_NOOP("GAPP_err", "the file type cannot be identified wt")},
    {"GAPP-0008", QT_TRANSLATE_NOOP("GAPP_err", "the application cannot change to the correct mode"),
     QT_TRANSLATE_NOOP("GAPP_err", "the application cannot change to the correct mode wt")},
    {"GAPP-0011", QT_TRANSLATE_NOOP("GAPP_err", "user abort"),
     QT_TRANSLATE_NOOP("GAPP_err", "user abort wt")},
    {"GAPP-0012", QT_TRANSLATE_NOOP("GAPP_err", "out of memory"),
     QT_TRANSLATE_NOOP("GAPP_err", "out of memory wt")},
    {"GAPP-0013", QT_TRANSLATE_NOOP("GAPP_err", "command parameter error"),
     QT_TRANSLATE_NOOP("GAPP_err", "command parameter error wt")},
    {"GAPP-0014", QT_TRANSLATE_NOOP("GAPP_err", "file not found"),
     QT_TRANSLATE_NOOP("GAPP_err", "file not found wt")},
    {"GAPP-0015", QT_TRANSLATE_NOOP("GAPP_err", "invalid stage command"),
     QT_TRANSLATE_NOOP("GAPP_err", "invalid stage command wt")},
};

struct Sound
{
    const char *key;
    const char *description;
    const char *file;
};

const Sound kSounds[12] = {
    {CfgKeys::SOUNDS[0], QT_TRANSLATE_NOOP("GAPP_cfg", "remote control ok sound"), "sounds/ok.wav"},
    {CfgKeys::SOUNDS[1], QT_TRANSLATE_NOOP("GAPP_cfg", "remote control measurement sound"), "sounds/measurement.wav"},
    {CfgKeys::SOUNDS[2], QT_TRANSLATE_NOOP("GAPP_cfg", "remote control finish measurement sound"), "sounds/measurement-finish.wav"},
    {CfgKeys::SOUNDS[3], QT_TRANSLATE_NOOP("GAPP_cfg", "remote control measurement2 sound"), "sounds/measurement2.wav"},
    {CfgKeys::SOUNDS[4], QT_TRANSLATE_NOOP("GAPP_cfg", "remote control finish measurement2 sound"), "sounds/measurement2-finish.wav"},
    {CfgKeys::SOUNDS[5], QT_TRANSLATE_NOOP("GAPP_cfg", "remote control referencing sound"), "sounds/ref-measurement.wav"},
    {CfgKeys::SOUNDS[6], QT_TRANSLATE_NOOP("GAPP_cfg", "remote control finish referencing sound"), "sounds/ref-measurement-finish.wav"},
    {CfgKeys::SOUNDS[7], QT_TRANSLATE_NOOP("GAPP_cfg", "remote control error sound"), "sounds/error.wav"},
    {CfgKeys::SOUNDS[8], QT_TRANSLATE_NOOP("GAPP_cfg", "remote control referencing error sound"), "sounds/ref-error.wav"},
    {CfgKeys::SOUNDS[9], QT_TRANSLATE_NOOP("GAPP_cfg", "remote control mode change sound"), "sounds/modechange.wav"},
    {CfgKeys::SOUNDS[10], QT_TRANSLATE_NOOP("GAPP_cfg", "remote control undo sound"), "sounds/undo.wav"},
    {CfgKeys::SOUNDS[11], QT_TRANSLATE_NOOP("GAPP_cfg", "remote control create element sound"), "sounds/create.wav"},
};

QString cfgText(const char *text)
{
    return translate("GAPP_cfg", text);
}

void addStringArray(CfgNode *node, const char *key, const QString &description,
                    const QString &elementDefault, int flags)
{
    node->addArray<QString>(ZalString(key), description, elementDefault, 0, false, Flags(flags));
}

bool videoFormatsOffered(int app)
{
    switch (app) {
    case 0: case 1: case 4: case 5: case 6: case 10: case 11:
        return true;
    default:
        return false;
    }
}

void safemodeCallback()
{
    CfgNode *cfg = MainWindow::cfg;
    CfgDbl *limit = cfg ? cfg->getDbl(CfgKeys::VIRTUAL_MEMORY_LIMIT) : nullptr;
    if (limit && limit->getValue() > 1e-50) {
        Debug::printLine("Zal::GApp::safemodeCallback", __LINE__,
                         QStringLiteral("Safemode: disabling virtual memory limit"));
        limit->setValue(0.0);
    }
}

} // namespace

void cleanTemporaryDirectory(const QString &directory, const QDateTime &now)
{
    const QDir dir(directory);
    const auto entries = dir.entryInfoList(QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &info : entries) {
        QDateTime touched = info.lastModified();
        const QDateTime born = info.birthTime();
        if (born.isValid() && born > touched)
            touched = born;
        if (touched.daysTo(now) > 21 && info.exists() && info.isFile() && !info.isDir()
            && info.permission(QFileDevice::WriteOwner))
            QFile::remove(info.filePath());
    }
}

CfgNode *InitLibrary()
{
    if (OS::getEnv("ZAL_DEBUG_QT"))
        qInstallMessageHandler(qtMessageHandler);
    Translator::installTranslator(QStringLiteral("ZalGApplication"));

    // The shortcut and toolbar user-file objects are created here; they
    // register themselves with the resource container.
    new ShortcutFile;
    new ToolBarFile;

    CfgNode *node = new CfgNode(ZalString(ZalInit::getApplicationName()), QStringLiteral("general"), Flags());
    node->addInt(ZalString(CFG_LEVEL_ENTRY), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "editing level")), 0, 1, 0, 1,
                 Flags(ZalInit::_app == 9 ? 1 : 0));
    std::vector<QString> codes, languages;
    Translator::getAllLanguages(codes, languages);
    node->addList(ZalString(CfgKeys::LANGUAGE), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "language")), languages,
                  Translator::getDefaultLanguage(), Flags());
    node->addBool(ZalString(CFG_UNIT_NODE), translate("MSystem_cfg", "default units"), true, Flags());
    node->addNode(ZalString(CFG_USER_DIRECTORY), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "user directory")), Flags());
    addStringArray(node, CFG_RECENT_FILE_NAMES, QStringLiteral("recent files"), QStringLiteral(""), 2);
    addStringArray(node, CFG_RECENT_FILE_COMMANDS, QStringLiteral("recent file commands"), QStringLiteral(""), 2);
    addStringArray(node, CFG_RECENT_FILE_PARAMS, QStringLiteral("recent file parameters"), QStringLiteral(""), 2);
    addStringArray(node, CFG_RECENT_FILE_APPMODES, QStringLiteral("recent file appmodes"), QStringLiteral(""), 2);
    node->addUInt(ZalString(CfgKeys::RECENT_FILE_VERSION), QStringLiteral("recent files version"), 0u,
                  4294967295u, 0u, 1u, Flags(2));
    node->addFileName(ZalString(CFG_PROJECT_BASE), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "project base")),
                      Dir::documentsPath(), ZalFileMode_t(5), Flags());
    node->addFileName(ZalString(CFG_TEMP_DIR), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "temp dir")),
                      ZalInit::getConfigDirectory(2) + QStringLiteral("/tmp"), ZalFileMode_t(5), Flags());
    node->addFileName(ZalString(CFG_CLIPBOARD_DIR), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "clipboard directory")),
                      ZalInit::getConfigDirectory(2), ZalFileMode_t(5), Flags());
    node->addList(ZalString(CFG_IMAGE_FILE_FORMAT), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "default image file format")),
                  {cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "TIFF")), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "JPEG")),
                   cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "PNG"))},
                  2, Flags());
    if (videoFormatsOffered(ZalInit::_app))
        node->addList(ZalString(CFG_VIDEO_FILE_FORMAT), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "default video file format")),
                      {cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "MPG")), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "AVI"))}, 1,
                      Flags());
    node->addBool(ZalString(CfgKeys::USE_LARGE_ICONS), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "use large icons")), false,
                  Flags());
    node->addDbl(ZalString(CfgKeys::VIRTUAL_MEMORY_LIMIT),
                 cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "virtual memory limit (factor * main_memory)")), 0.0, 100.0,
                 0.0, 0.1, 1, Flags(5));
    addStringArray(node, CFG_IGNORED_SYSTEM_TEMPLATES, cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "system templates")),
                   QString(), Cfg::Profile::instance() ? 2 : 0);
    node->addNode(ZalString(CfgKeys::MAIN_WIN_LAYOUT), QStringLiteral("main window layout"), Flags(2));
    addStringArray(node, CfgKeys::MAIN_AREA, QStringLiteral("main window docking layout"), QStringLiteral(""), 2);
    addStringArray(node, CfgKeys::TOOLBARS3, QStringLiteral("main window toolbar layout"), QStringLiteral(""), 2);
    node->addNode(ZalString(CfgKeys::REMOTE_CONTROL), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "remote control node")),
                  Flags(1));
    node->addInt(ZalString(CfgKeys::MEASUREMENT_KEYCODE), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "measurement key code")),
                 0, 2147483647, 0x01000017, 1, Flags(1));
    node->addInt(ZalString(CfgKeys::UNDO_KEYCODE), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "undo key code")), 0,
                 2147483647, 0x01000016, 1, Flags(1));
    node->addInt(ZalString(CfgKeys::REFERENCE_KEYCODE), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "reference key code")), 0,
                 2147483647, 0x2E, 1, Flags(1));
    for (const Sound &s : kSounds)
        node->addFileName(ZalString(s.key), cfgText(s.description), QString::fromLatin1(s.file), ZalFileMode_t(2),
                          Flags(1));
    node->addNode(ZalString(CFG_RENDER_NODE), cfgText(QT_TRANSLATE_NOOP("GAPP_cfg", "render node")), Flags());

    Safemode::registerCallback(safemodeCallback);
    for (const ErrorCode &e : kErrorCodes)
        GTools::ErrorMessageContainer::registerError(e.code, translate("GAPP_err", e.text),
                                                     translate("GAPP_err", e.textWt));
    GTools::InfoMessageContainer::registerInfo(
        "gapp_window_size_limited",
        translate("GAPP_info", "the currently active renderer does not allow the window to be fully maximized."));

    CfgFileName *temp = node->getFileName(ZalString(CFG_TEMP_DIR));
    if (temp && temp->getValue() == temp->getDefault()) {
        // The default lies in the user's own folder: make it on first start.
        QDir().mkpath(temp->getValue());
        cleanTemporaryDirectory(temp->getValue(), QDateTime::currentDateTime());
    }
    return node;
}

void DeleteStaticData()
{
    ViewWidgetContainer::deleteAllCreators();
    CommandContainer::deleteAllCommands();
    GTools::InfoMessageContainer::deleteAllInfoMessages();
    GTools::ErrorMessageContainer::deleteAllErrorMessages();
    MenuDataContainer::deleteAllMenus();
    ToolBarContainer::deleteAllToolBars();
    ViewContainer::deleteAllViews();
    ShortcutContainer::deleteAllData();
    IconSetContainer::deleteAllIconSets();
}

QString ConfigFile::tempFileName(const QString &fileName)
{
    return fileName + QStringLiteral("-tmp-%1").arg(OS::getPID());
}

bool ConfigFile::load(CfgNode *node, const QString &fileName, bool *found)
{
    if (found)
        *found = false;
    if (fileName.isEmpty())
        return true;
    QFile probe(fileName);
    if (!probe.open(QIODevice::ReadOnly))
        return true;
    probe.close();
    if (found)
        *found = true;
    return node->load(fileName);
}

bool ConfigFile::save(CfgNode *node, const QString &fileName)
{
    const QString temp = tempFileName(fileName);
    // CfgNode::save writes through QSaveFile, which flushes the data to disk
    // before the temporary file appears under its name.
    if (!node->save(temp)) {
        OS::unlink(temp);
        return false;
    }
    // rename() replaces the old file in one step, so a crash at any moment
    // leaves either the old or the new file complete.
    const QByteArray from = QFile::encodeName(temp), to = QFile::encodeName(fileName);
    if (std::rename(from.constData(), to.constData()) != 0) {
        // Systems whose rename does not replace: remove the old file first.
        OS::unlink(fileName);
        if (!OS::rename(temp, fileName)) {
            OS::unlink(temp);
            return false;
        }
    }
    return true;
}

QString resolveSoundFileName(const QString &name)
{
    if (name.isEmpty() || name.startsWith(QLatin1Char('/')))
        return name;
    return ZalInit::getSoftwareDirectory() + QStringLiteral("/config/") + name;
}

int virtualMemoryLimit(double factor, int memoryKilobytes)
{
    if (!(factor > 1e-50))
        return 2147483647;
    const double limit = double(memoryKilobytes) * factor;
    if (limit >= 2147483647.0)
        return 2147483647;
    const int kb = int(limit);
    return kb < 65536 ? 65536 : kb;
}

} // namespace GApp
} // namespace Zal
