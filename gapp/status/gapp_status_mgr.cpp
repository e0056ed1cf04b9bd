#include "gapp_status_mgr.h"
#include "gapp_command.h"
#include "gapp_main_window.h"
#include "gapp_menu_data.h"
#include "gapp_menu_provider.h"
#include "gapp_shortcut.h"
#include "gapp_vcontainer.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_gtools_flags.h"
#include "zal_image_type.h"
#include "zal_os.h"
#include "zal_translate.h"
#include <QDir>
#include <QFileInfo>
#include <cstdio>
#include <set>
#include <vector>

namespace Zal {
namespace GApp {

namespace {

// Where the shortcut maps join a mode change: the map "default" becomes the
// active one.
void activateDefaultShortcuts()
{
    // Without a main window there is no map "default".
    if (ShortcutContainer::getData(QStringLiteral("default")))
        ShortcutContainer::setActiveData(QStringLiteral("default"));
}

// The mode's standard view is shown; without a window there is no main area.
void showStandardView(const QString &view)
{
    if (MainWindow::main_win)
        ViewContainer::setView(view);
}

// The mode's main menu is built; without a window there is no menu bar.
void createMainMenu(const QString &name)
{
    if (MainWindow::main_win)
        MenuDataContainer::createMainMenu(name);
}

} // namespace

AppStatusManager::AppStatusManager(QObject *parent) : QObject(parent)
{
    qRegisterMetaType<SelectionMode_t>();
    qRegisterMetaType<std::vector<ObjectPointDescriptor>>();
}

AppStatusManager::~AppStatusManager()
{
    for (auto &entry : _status_data)
        delete entry.second;
}

unsigned int AppStatusManager::getUniqueId(const QString &name)
{
    return _unique_ids.getUniqueId(name);
}

bool AppStatusManager::existUniqueId(const QString &name) const
{
    return _unique_ids.existUniqueId(name);
}

QString AppStatusManager::getUniqueIdText(unsigned int id) const
{
    return _unique_ids.getUniqueIdText(id);
}

void AppStatusManager::setStatusData(unsigned int mode, StatusData *data)
{
    if (_status_data.count(mode))
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::setStatusData",
                             QStringLiteral("duplicated application type"));
    _status_data.emplace(mode, data);
}

StatusData *AppStatusManager::getStatus(unsigned int mode) const
{
    const auto it = _status_data.find(mode);
    if (it == _status_data.end())
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::getStatus",
                             QStringLiteral("invalid application type"));
    return it->second;
}

std::vector<unsigned int> AppStatusManager::getAppModes() const
{
    std::vector<unsigned int> modes;
    modes.reserve(_status_data.size());
    for (const auto &entry : _status_data)
        modes.push_back(entry.first);
    return modes;
}

void AppStatusManager::setAppMode(unsigned int newMode)
{
    const bool debug = MainWindow::debug_views;
    for (const auto &entry : _status_data) {
        const QString name = getUniqueIdText(entry.first);
        if (debug)
            Debug::printTrace(QStringLiteral("Before mode change '%1'").arg(name));
        entry.second->beforeModeChange(newMode);
        if (debug)
            Debug::printTrace(QStringLiteral("Before mode change '%1' ok").arg(name));
    }

    const unsigned int oldMode = _app_mode;
    _app_mode = newMode;

    activateDefaultShortcuts();

    for (const auto &entry : _status_data) {
        const QString name = getUniqueIdText(entry.first);
        if (debug)
            Debug::printTrace(QStringLiteral("After mode change '%1'").arg(name));
        entry.second->afterModeChange(oldMode);
        if (debug)
            Debug::printTrace(QStringLiteral("After mode change '%1' ok").arg(name));
    }

    StatusData *status = getStatus(newMode);
    if (!status->getStandardView().isEmpty())
        showStandardView(status->getStandardView());
    createMainMenu(status->getMainMenuName());
}

bool AppStatusManager::isAppModeChangePossible(unsigned int newMode) const
{
    return getStatus(_app_mode)->isAppModeChangePossible(newMode);
}

void AppStatusManager::setMenuFunctionActive(bool active)
{
    if (active == _menu_function_active)
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::setMenuFunctionActive",
                             QStringLiteral("second menu function is active"));
    _menu_function_active = active;
}

void AppStatusManager::setFigureOperationInCommandEnabled(bool enabled)
{
    if (enabled) {
        ++_figure_operation_counter;
        return;
    }
    if (_figure_operation_counter == 0)
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::setFigureOperationInCommandEnabled",
                             QStringLiteral("Flag has never been set before"));
    --_figure_operation_counter;
}

bool AppStatusManager::isFigureOperationInCommandEnabled() const
{
    return _figure_operation_counter == _active_commands.size();
}

void AppStatusManager::increaseStartModeFlag()
{
    ++_start_mode_counter;
    GTools::remote_ctrl_command_active = _start_mode_counter != 0;
}

void AppStatusManager::decreaseStartModeFlag()
{
    // Unpaired decreases must not wrap around into "remote for ever".
    if (_start_mode_counter != 0)
        --_start_mode_counter;
    GTools::remote_ctrl_command_active = _start_mode_counter != 0;
}

AppStatusManager::CommandStartMode_t AppStatusManager::getCommandStartMode() const
{
    return _start_mode_counter != 0 ? START_REMOTE : START_NORMAL;
}

void AppStatusManager::pushActiveCommand(Command *cmd)
{
    _active_commands.push_back(cmd);
}

void AppStatusManager::popActiveCommand()
{
    if (_active_commands.empty())
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::popActiveCommand",
                             QStringLiteral("no active command left"));
    Command *cmd = _active_commands.back();
    _active_commands.pop_back();

    MainWindow *win = MainWindow::main_win;
    if (!win)
        return;
    if (_active_commands.empty())
        win->emitMenuCommandFinishedSignal(cmd ? cmd->getName() : QString());
    // An exit asked for while commands ran is carried out by the outermost one.
    if (win->isExitRequested() && !win->isScriptCommandRunning() && _active_commands.empty())
        win->exitProgram();
}

bool AppStatusManager::getActiveCommand(Command **cmd) const
{
    if (_active_commands.empty())
        return false;
    if (cmd)
        *cmd = _active_commands.back();
    return true;
}

void AppStatusManager::updateMainWindow()
{
    if (!MainWindow::main_win)
        return;
    MainWindow::main_win->updateSensitivity();
    setMainWindowCaption();
}

void AppStatusManager::emitSelectionChanged(unsigned int app, SelectionMode_t mode)
{
    emit selectionPreChangedSignal(app, mode);
    emit selectionChangedSignal(app, mode);
    updateMainWindow();
}

void AppStatusManager::emitDataChanged(unsigned int app, unsigned int reason)
{
    emit dataPreChangedSignal(app, reason);
    emit dataChangedSignal(app, reason);
    updateMainWindow();
}

void AppStatusManager::emitVisualizationChanged(unsigned int app, unsigned int stage)
{
    const bool debug = MainWindow::debug_signals;
    if (debug)
        Debug::printTrace(QStringLiteral("Signal: visualizationChangedSignal"));
    emit visualizationChangedSignal(app, stage);
    if (debug)
        Debug::printTrace(QStringLiteral("Signal: visualizationChangedSignal ok"));
}

void AppStatusManager::emitObjectPointNormalSelected(
    const std::vector<ObjectPointDescriptor> &points)
{
    emit objectPointNormalSelectedSignal(points);
}

void AppStatusManager::emitDialogPreview()
{
    emit dialogPreview();
}

void AppStatusManager::emitDialogCreate()
{
    emit dialogCreate();
}

void AppStatusManager::emitDialogCreateClose()
{
    emit dialogCreateClose();
}

void AppStatusManager::emitDialogResetLastEntry()
{
    emit dialogResetLastEntry();
}

void AppStatusManager::emitDialogResetAll()
{
    emit dialogResetAll();
}

void AppStatusManager::emitDialogApply()
{
    emit dialogApply();
}

void AppStatusManager::emitDialogApplyDeselect()
{
    emit dialogApplyDeselect();
}

void AppStatusManager::emitDialogApplyClose()
{
    emit dialogApplyClose();
}

void AppStatusManager::emitDialogSetEnabled(bool enable)
{
    emit dialogSetEnabled(enable);
}

void AppStatusManager::registerSpecialMenuProvider(const QString &name,
                                                   SpecialMenuProvider *provider)
{
    const auto it = _special_menu_providers.find(name);
    if (it != _special_menu_providers.end() && it->second)
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::registerSpecialMenuProvider",
                             QStringLiteral("cannot register second provider for special menu."));
    _special_menu_providers[name] = provider;
    if (provider)
        connect(provider, &QObject::destroyed, this,
                &AppStatusManager::specialMenuProviderDestroyed);
}

SpecialMenuProvider *AppStatusManager::getSpecialMenuProvider(const QString &name) const
{
    const auto it = _special_menu_providers.find(name);
    return it == _special_menu_providers.end() ? nullptr : it->second;
}

SpecialMenuProvider *AppStatusManager::getSpecialMenuProvider(const Menu *menu) const
{
    for (const auto &entry : _special_menu_providers)
        if (entry.second && entry.second->isRegisteredMenu(menu))
            return entry.second;
    return nullptr;
}

void AppStatusManager::specialMenuProviderDestroyed(QObject *provider)
{
    // The provider is inside ~QObject here: compare addresses only.
    for (auto it = _special_menu_providers.begin(); it != _special_menu_providers.end(); ++it) {
        if (it->second && static_cast<QObject *>(it->second) == provider) {
            _special_menu_providers.erase(it);
            return;
        }
    }
}

void AppStatusManager::registerProfileMenuProvider(ProfileMenuProvider *provider)
{
    if (_profile_menu_provider)
        ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::registerProfileMenuProvider",
                       QStringLiteral("only one provider possible"))
            .report();
    _profile_menu_provider = provider;
}

void AppStatusManager::registerExitNotifier(ExitNotifier *notifier)
{
    if (_exit_notifiers.count(notifier))
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::registerExitNotifier",
                             QStringLiteral("Exit notifier already registered"));
    _exit_notifiers.insert(notifier);
}

void AppStatusManager::unregisterExitNotifier(ExitNotifier *notifier)
{
    if (!_exit_notifiers.count(notifier))
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::unregisterExitNotifier",
                             QStringLiteral("Exit notifier not registered"));
    _exit_notifiers.erase(notifier);
}

bool AppStatusManager::callCanExitProgram()
{
    for (const auto &entry : _status_data)
        if (!entry.second->canExitProgram())
            return false;
    for (ExitNotifier *notifier : _exit_notifiers)
        if (!notifier->canExitProgram())
            return false;
    return true;
}

void AppStatusManager::callExitProgram()
{
    for (const auto &entry : _status_data)
        entry.second->exitProgram();
    // A notifier may unregister itself from inside the call.
    const std::vector<ExitNotifier *> notifiers(_exit_notifiers.begin(), _exit_notifiers.end());
    for (ExitNotifier *notifier : notifiers)
        notifier->exitProgram();
}

void AppStatusManager::callCommitData()
{
    for (const auto &entry : _status_data)
        entry.second->commitData();
}

void AppStatusManager::setMainWindowCaption()
{
    if (!MainWindow::main_win)
        return;
    QString caption;
    const auto it = _status_data.find(_app_mode);
    QString name;
    bool modified = false;
    if (it != _status_data.end() && it->second->getSelectedDataName(&name, &modified)) {
        caption = name;
        if (modified)
            caption += translate("GAppStatusMgr", "(*)");
    }
    MainWindow::main_win->setCaption(caption);
}


// --- data and file operations ---------------------------------------------------

namespace {

// No type has been chosen to read a file.
constexpr unsigned int NO_MODE = 0xFFFFFFFFu;

// `text` is a key of the context "GAPP_err", marked where it is written.
void appendToLog(ErrorLog *log, const char *text, const QString &fileName)
{
    if (log)
        *log << translate("GAPP_err", text).arg(QDir::toNativeSeparators(fileName)) << END_LOG;
}

void setErrorCode(QString *errorCode, const char *code)
{
    if (errorCode)
        *errorCode = QString::fromLatin1(code);
}

// A file stream for reading, or null. Only regular files are opened: a
// directory opens under glibc but cannot be read, and a FIFO would block
// the GUI thread until someone writes to it.
std::FILE *openForReading(const QString &fileName)
{
    const QFileInfo info(fileName);
    if (info.exists() && !info.isFile())
        return nullptr;
    return OS::openStdStream(fileName, "rb");
}

// The type that reads a file: the active one when it can, else the first
// that can, NO_MODE when none can. The types are asked in order until the
// active one has answered yes.
template <class CanRead>
unsigned int readingMode(const std::map<unsigned int, StatusData *> &types, unsigned int active,
                         CanRead canRead)
{
    unsigned int chosen = NO_MODE;
    for (const auto &entry : types) {
        if (!canRead(entry.second))
            continue;
        if (chosen == NO_MODE || entry.first == active)
            chosen = entry.first;
        if (chosen == active)
            break;
    }
    return chosen;
}

} // namespace

StatusData *AppStatusManager::activeStatus() const
{
    const auto it = _status_data.find(_app_mode);
    return it == _status_data.end() ? nullptr : it->second;
}

StatusData *AppStatusManager::statusFor(unsigned int mode, const char *function) const
{
    const auto it = _status_data.find(mode);
    if (it == _status_data.end())
        throw ZAL_PROG_ERROR(function, QStringLiteral("invalid application type"));
    return it->second;
}

bool AppStatusManager::isSaveSensitive() const
{
    return statusFor(_app_mode, "Zal::GApp::AppStatusManager::isSaveSensitive")->isSaveSensitive();
}

bool AppStatusManager::saveFile(const QString &name, const QString &fileName, QString *errorCode,
                                ErrorLog *log)
{
    return statusFor(_app_mode, "Zal::GApp::AppStatusManager::saveFile")
        ->saveFile(name, fileName, errorCode, log);
}

bool AppStatusManager::isSaveAsSensitive() const
{
    return statusFor(_app_mode, "Zal::GApp::AppStatusManager::isSaveAsSensitive")->isSaveAsSensitive();
}

bool AppStatusManager::isExportC3DSensitive() const
{
    return statusFor(_app_mode, "Zal::GApp::AppStatusManager::isExportC3DSensitive")
        ->isExportC3DSensitive();
}

bool AppStatusManager::isSaveProjectAsSensitive() const
{
    return statusFor(_app_mode, "Zal::GApp::AppStatusManager::isSaveProjectAsSensitive")
        ->isSaveProjectAsSensitive();
}

bool AppStatusManager::isCloseSensitive() const
{
    return statusFor(_app_mode, "Zal::GApp::AppStatusManager::isCloseSensitive")->isCloseSensitive();
}

bool AppStatusManager::closeData(const std::vector<QString> &names, QString *errorCode, ErrorLog *log)
{
    return statusFor(_app_mode, "Zal::GApp::AppStatusManager::closeData")->closeData(names, errorCode, log);
}

bool AppStatusManager::isCopyToClipboardSensitive() const
{
    return statusFor(_app_mode, "Zal::GApp::AppStatusManager::isCopyToClipboardSensitive")
        ->isCopyToClipboardSensitive();
}

bool AppStatusManager::copyToClipboard(const std::vector<QString> &names,
                                       const std::vector<QString> &formats, QString *errorCode,
                                       ErrorLog *log) const
{
    return statusFor(_app_mode, "Zal::GApp::AppStatusManager::copyToClipboard")
        ->copyToClipboard(names, formats, errorCode, log);
}

bool AppStatusManager::saveFileAs(const std::vector<QString> &names, const QString &fileName,
                                  RenameType_t rename, QString *recentName, QString *errorCode,
                                  ErrorLog *log)
{
    return statusFor(_app_mode, "Zal::GApp::AppStatusManager::saveFileAs")
        ->saveFileAsRecent(names, fileName, rename, recentName, errorCode, log);
}

std::vector<QString> AppStatusManager::getSelectedData(const char *selection)
{
    return statusFor(_app_mode, "Zal::GApp::AppStatusManager::getSelectedData")->getSelectedData(selection);
}

std::vector<const char *> AppStatusManager::getAdditionalSelectionNames()
{
    return statusFor(_app_mode, "Zal::GApp::AppStatusManager::getAdditionalSelectionNames")
        ->getAdditionalSelectionNames();
}

bool AppStatusManager::cleanupInconsistentState()
{
    StatusData *active = activeStatus();
    return active ? active->cleanupInconsistentState() : true;
}

bool AppStatusManager::isDataModified(unsigned int mode, const QString &name) const
{
    return statusFor(mode, "Zal::GApp::AppStatusManager::isDataModified")->isDataModified(name);
}

QString AppStatusManager::getFileName(unsigned int mode, const QString &name)
{
    return statusFor(mode, "Zal::GApp::AppStatusManager::getFileName")->getFileName(name);
}

bool AppStatusManager::isFileNameValid(unsigned int mode, const QString &fileName) const
{
    return statusFor(mode, "Zal::GApp::AppStatusManager::isFileNameValid")->isFileNameValid(fileName);
}

QString AppStatusManager::getFileNameExtension(unsigned int mode, const QString &name)
{
    return statusFor(mode, "Zal::GApp::AppStatusManager::getFileNameExtension")->getFileNameExtension(name);
}

QString AppStatusManager::getFileNameExtension(unsigned int mode, const std::vector<QString> &names)
{
    return statusFor(mode, "Zal::GApp::AppStatusManager::getFileNameExtension")->getFileNameExtension(names);
}

std::vector<QString> AppStatusManager::getAllData(unsigned int mode)
{
    return statusFor(mode, "Zal::GApp::AppStatusManager::getAllData")->getAllData();
}

bool AppStatusManager::isStatusDataEmpty() const
{
    for (const auto &entry : _status_data)
        if (!entry.second->isEmpty())
            return false;
    return true;
}

std::vector<QString> AppStatusManager::getAllFileNameExtensions()
{
    std::vector<QString> all;
    std::set<QString> seen;
    for (const auto &entry : _status_data)
        for (const QString &extension : entry.second->getAllFileNameExtensions())
            if (seen.insert(extension).second)
                all.push_back(extension);
    return all;
}

StageIdentifier AppStatusManager::getActualStageIdentifier()
{
    StatusData *active = activeStatus();
    return active ? active->getActualStageIdentifier() : StageIdentifier::NO_STAGE;
}

StatusData::StageActive_t AppStatusManager::isStageActive(const QString &stage)
{
    // The active type speaks first; the others only while nobody has an answer.
    StatusData *active = activeStatus();
    StatusData::StageActive_t answer = active ? active->isStageActive(stage) : StatusData::STAGE_UNKNOWN;
    for (const auto &entry : _status_data) {
        if (answer != StatusData::STAGE_UNKNOWN)
            return answer;
        answer = entry.second->isStageActive(stage);
    }
    return answer != StatusData::STAGE_UNKNOWN ? answer : StatusData::STAGE_INACTIVE;
}

std::vector<int> AppStatusManager::getStageNumbers(QString name, StatusData::ExplorerPosition_t position,
                                                   int index)
{
    StatusData *active = activeStatus();
    return active ? active->getStageNumbers(name, position, index) : std::vector<int>();
}

std::vector<QString> AppStatusManager::getStageLoopStages(const QString &name,
                                                          StatusData::StageLoopStage_t stage)
{
    StatusData *active = activeStatus();
    std::vector<QString> stages = active ? active->getStageLoopStages(name, stage) : std::vector<QString>();
    for (auto it = _status_data.begin(); stages.empty() && it != _status_data.end(); ++it)
        stages = it->second->getStageLoopStages(name, stage);
    return stages;
}

bool AppStatusManager::readFileContents(const QString &fileName, std::vector<char> *bytes,
                                        ErrorLog *log) const
{
    std::FILE *file = openForReading(fileName);
    if (!file) {
        appendToLog(log, QT_TRANSLATE_NOOP("GAPP_err", "cannot open file for reading: %1"), fileName);
        return false;
    }
    std::vector<char> head(CONTENTS_READ_SIZE);
    const size_t count = std::fread(head.data(), 1, head.size(), file);
    const bool failed = std::ferror(file) != 0;
    std::fclose(file);
    if (failed) {
        appendToLog(log, QT_TRANSLATE_NOOP("GAPP_err", "cannot open file for reading: %1"), fileName);
        return false;
    }
    head.resize(count);
    if (bytes)
        *bytes = std::move(head);
    return true;
}

bool AppStatusManager::getFileType(const QString &fileName, ErrorLog *log) const
{
    unsigned int mode = NO_MODE;
    return getFileInfo(fileName, &mode, log);
}

bool AppStatusManager::getFileInfo(const QString &fileName, unsigned int *mode, ErrorLog *log) const
{
    unsigned int unused = NO_MODE;
    if (!mode)
        mode = &unused;
    *mode = NO_MODE;

    Image::FileType_t imageType = Image::TYPE_UNKNOWN;
    if (Image::getFileType(fileName, &imageType)) {
        *mode = readingMode(_status_data, _app_mode, [](StatusData *type) { return type->canOpenImage(); });
        if (*mode != NO_MODE)
            return true;
        appendToLog(log, QT_TRANSLATE_NOOP("GAPP_err", "cannot identify image type for file %1"), fileName);
        return false;
    }

    std::vector<char> bytes;
    if (!readFileContents(fileName, &bytes, log))
        return false;
    *mode = readingMode(_status_data, _app_mode, [&bytes](StatusData *type) { return type->canOpenFile(bytes); });
    if (*mode != NO_MODE)
        return true;
    appendToLog(log, QT_TRANSLATE_NOOP("GAPP_err", "cannot identify file type for file %1"), fileName);
    return false;
}

bool AppStatusManager::changeModeFor(unsigned int mode, const char *function)
{
    if (mode == _app_mode)
        return true;
    if (!statusFor(_app_mode, function)->isAppModeChangePossible(mode))
        return false;
    setAppMode(mode);
    return true;
}

bool AppStatusManager::openFile(const QString &fileName, QString *second, QString *errorCode, ErrorLog *log)
{
    std::FILE *file = openForReading(fileName);
    if (!file) {
        setErrorCode(errorCode, "GAPP-0014");
        appendToLog(log, QT_TRANSLATE_NOOP("GAPP_err", "cannot open file for reading %1"), fileName);
        return false;
    }
    std::fclose(file);

    unsigned int mode = NO_MODE;
    if (!getFileInfo(fileName, &mode, log)) {
        setErrorCode(errorCode, "GAPP-0007");
        return false;
    }
    if (!changeModeFor(mode, "Zal::GApp::AppStatusManager::openFile")) {
        setErrorCode(errorCode, "GAPP-0008");
        appendToLog(log, QT_TRANSLATE_NOOP("GAPP_err", "open file %1"), fileName);
        return false;
    }
    return statusFor(_app_mode, "Zal::GApp::AppStatusManager::openFile")
        ->openFile(fileName, second, errorCode, log);
}

bool AppStatusManager::pasteFromClipboard(const std::vector<QString> &files,
                                          const std::vector<QString> &second, QString *third,
                                          QString *errorCode, ErrorLog *log)
{
    if (files.empty())
        throw ZAL_PROG_ERROR("Zal::GApp::AppStatusManager::pasteFromClipboard",
                             QStringLiteral("no file to paste"));
    unsigned int mode = NO_MODE;
    if (!getFileInfo(files.front(), &mode, log)) {
        setErrorCode(errorCode, "GAPP-0007");
        return false;
    }
    if (!changeModeFor(mode, "Zal::GApp::AppStatusManager::pasteFromClipboard")) {
        setErrorCode(errorCode, "GAPP-0008");
        return false;
    }
    return statusFor(_app_mode, "Zal::GApp::AppStatusManager::pasteFromClipboard")
        ->pasteFromClipboard(files, second, third, errorCode, log);
}

} // namespace GApp
} // namespace Zal
