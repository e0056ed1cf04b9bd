#include "gapp_command.h"
#include "gapp_ccontainer.h"
#include "gapp_icon_set.h"
#include "gapp_main_window.h"
#include "zal_cfg.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_icon.h"
#include "zal_translate.h"
#include "zal_variant.h"
#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QToolBar>
#include <QToolButton>

namespace Zal {
namespace GApp {

namespace {

// The user's own icon for the name, which takes precedence over the
// command's own; asked on every call, so a later change shows at once.
const QIcon *userIconSet(const QString &name)
{
    return IconSetContainer::getIconSet(name);
}

// The menu text in black on a transparent square of the small icon size.
QIcon *createTextIcon(const QString &text)
{
    const int s = GIcon::Cache::getIconSize(0);
    QImage image(s, s, QImage::Format_RGB32);
    QImage alpha(s, s, QImage::Format_RGB32);
    image.fill(Qt::white);
    alpha.fill(Qt::black);
    const QRect rect(0, 0, s, s);
    const int flags = Qt::AlignLeft | Qt::AlignVCenter;
    {
        QPainter p(&image);
        QFont font = p.font();
        font.setPixelSize(2 * s / 3);
        p.setFont(font);
        p.setPen(Qt::black);
        p.drawText(rect, flags, text);
    }
    {
        QPainter p(&alpha);
        QFont font = p.font();
        font.setPixelSize(2 * s / 3);
        p.setFont(font);
        p.setPen(Qt::white);
        p.drawText(rect, flags, text);
    }
    image = image.convertToFormat(QImage::Format_ARGB32);
    image.setAlphaChannel(alpha);
    return new QIcon(QPixmap::fromImage(image));
}

// The entry a parameter takes its range or recorded value from; a missing
// one is a mistake of the command's author.
template <class Item>
Item *cfgItem(const char *function, const CfgNode *node,
              Item *(CfgNode::*get)(const ZalString &) const, const char *entry)
{
    if (!node)
        throw ZAL_PROG_ERROR(function, QStringLiteral("no configuration node"));
    Item *item = (node->*get)(ZalString(entry));
    if (!item)
        throw ZAL_PROG_ERROR(function, QStringLiteral("configuration entry not found: %1")
                                           .arg(QString::fromLatin1(entry ? entry : "")));
    return item;
}

} // namespace

ChangeLogEntry::ChangeLogEntry(UpdateType_t t, const char *txt, const char *first,
                               const char *second)
    : type(t), text(txt), list1{ZalString(first)}, list2{ZalString(second)}
{
}

ChangeLogEntry::ChangeLogEntry(UpdateType_t t, const char *txt, const std::vector<ZalString> &first,
                               const std::vector<ZalString> &second)
    : type(t), text(txt), list1(first), list2(second)
{
}

CommandUpdateInformation::~CommandUpdateInformation() = default;

void CommandUpdateInformation::addNameChange(const char *text, const char *newName)
{
    _change_log.emplace_back(ChangeLogEntry::NAME_CHANGE, text, newName, "");
}

void CommandUpdateInformation::addNewParameter(const char *text, const char *parameter)
{
    _change_log.emplace_back(ChangeLogEntry::NEW_PARAMETER, text, "", parameter);
}

void CommandUpdateInformation::addRemovedParameter(const char *text, const char *parameter)
{
    _change_log.emplace_back(ChangeLogEntry::REMOVED_PARAMETER, text, parameter, "");
}

void CommandUpdateInformation::addParameterChange(const char *text, const char *from,
                                                  const char *to)
{
    _change_log.emplace_back(ChangeLogEntry::PARAMETER_CHANGE, text, from, to);
}

void CommandUpdateInformation::addSystemElemSupport(const char *text,
                                                    const std::vector<ZalString> &first,
                                                    const std::vector<ZalString> &second)
{
    _change_log.emplace_back(ChangeLogEntry::SYSTEM_ELEM_SUPPORT, text, first, second);
}

Command::Command(bool menuFunction, bool toggle, const QString &name, const QString &menuName,
                 const QString &helpId, const char *iconName)
    : _toggle(toggle),
      _menu_function(menuFunction),
      _name(name),
      _menu_name(menuName),
      _help_id(helpId),
      _icon_name(iconName)
{
    CommandContainer::registerCommand(this);
}

Command::~Command()
{
    // A destructor must not throw; a command that was taken out of the
    // registry by hand only gets the report.
    try {
        CommandContainer::unregisterCommand(this);
    } catch (const ProgError &e) {
        e.report();
    }
    delete _icon;
}

bool Command::needsMenuSemaphore(bool *synchronized, CmdGroup_t *group) const
{
    if (synchronized)
        *synchronized = false;
    if (!_menu_function)
        return false;
    Command *active = nullptr;
    if (!MainWindow::smgr || !MainWindow::smgr->getActiveCommand(&active) || !active)
        return true;
    const std::vector<CmdGroup_t> declared = active->getSynchronizedCmdGroups();
    if (declared.empty())
        return true;
    const std::vector<CmdGroup_t> own = const_cast<Command *>(this)->belongsToCmdGroups();
    if (own.empty())
        return true;
    for (CmdGroup_t a : declared) {
        for (CmdGroup_t b : own) {
            if (a == b) {
                if (group)
                    *group = a;
                if (synchronized)
                    *synchronized = true;
                return false;
            }
        }
    }
    return true;
}

QString Command::getMenuName()
{
    return _menu_name;
}

bool Command::isDefaultIconSet() const
{
    if (userIconSet(_name))
        return false;
    if (!_icon && !_icon_name)
        return true;
    return _icon_generated;
}

const QIcon *Command::getIconSet()
{
    if (const QIcon *user = userIconSet(_name))
        return user;
    if (_icon)
        return _icon;
    if (_icon_name) {
        _icon = new QIcon(GIcon::Cache::getIconSet(_icon_name, 0, 1));
        _icon_generated = false;
        return _icon;
    }
    _icon = createTextIcon(getMenuName());
    _icon_generated = true;
    return _icon;
}

void Command::createToolBarWidget(QToolBar *toolbar, bool textOnly)
{
    CommandAction *action = CommandContainer::getCommandAction(_name);
    if (!toolbar || !action)
        return;
    toolbar->addAction(action);
    auto *button = qobject_cast<QToolButton *>(toolbar->widgetForAction(action));
    if (!button)
        return;
    if (textOnly)
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    else
        button->setIcon(*getIconSet());
}

bool Command::parseParameterStringStage(const QString &, const QString &, bool, bool,
                                        QString *errorCode, ErrorLog *)
{
    if (errorCode)
        *errorCode = QStringLiteral("GAPP-0015");
    return false;
}

bool Command::isVisible() const
{
    return true;
}

bool Command::executeScript(Variant *result, QString *errorCode, ErrorLog *log)
{
    QString text;
    const bool ok = executeScript(&text, errorCode, log);
    Variant value;
    if (text.size() >= 2 && text.startsWith(QLatin1Char('[')) && text.endsWith(QLatin1Char(']'))) {
        std::vector<Variant> list;
        for (const QString &element : decomposeVector(text))
            list.emplace_back(element);
        value = Variant(list);
    } else {
        value = Variant(text);
    }
    if (result)
        *result = value;
    return ok;
}

bool Command::executeScript(QString *, QString *, ErrorLog *)
{
    throw ZAL_PROG_ERROR("Zal::GApp::Command::executeScript",
                         QStringLiteral("executeScript () must be overloaded if called directly"));
}

bool Command::executeScriptInteractive(QString *result, QString *errorCode, ErrorLog *log)
{
    return executeScript(result, errorCode, log);
}

bool Command::executeScriptStage(AppStatusManager::MacroErrorBehaviour_t, std::vector<QString> *,
                                 std::vector<bool> *, QString *errorCode, ErrorLog *)
{
    if (errorCode)
        *errorCode = QStringLiteral("GAPP-0015");
    return false;
}

bool Command::isCommandSubstitutionAllowed() const
{
    return false;
}

bool Command::substituteParameterString(const QString &, const QString &, QString *)
{
    return false;
}

bool Command::isUndoRedoPossible() const
{
    return false;
}

bool Command::isSensitiveInSelectCommandMode(SelectCommandMode_t) const
{
    return true;
}

CommandUpdateInformation *Command::createUpdateInformation() const
{
    return nullptr;
}

std::vector<Command::CmdGroup_t> Command::getSynchronizedCmdGroups()
{
    return {};
}

std::vector<Command::CmdGroup_t> Command::belongsToCmdGroups()
{
    return {};
}

QString Command::createErrorString(const QString &message) const
{
    return translate("GAPPCommand", "command: %1 %2").arg(_name, message);
}

void Command::emitSelectionChanged(SelectionMode_t mode)
{
    if (AppStatusManager *smgr = MainWindow::smgr)
        smgr->emitSelectionChanged(smgr->getAppMode(), mode);
}

void Command::emitDataChanged(unsigned int flags)
{
    if (AppStatusManager *smgr = MainWindow::smgr)
        smgr->emitDataChanged(smgr->getAppMode(), flags);
}

double Command::getCfgDouble(QString &params, const QString &key, const char *entry)
{
    return getCfgDouble(MainWindow::cfg, params, key, entry);
}

double Command::getCfgUnit(QString &params, const QString &key, const char *entry)
{
    return getCfgUnit(MainWindow::cfg, params, key, entry);
}

int Command::getCfgInt(QString &params, const QString &key, const char *entry)
{
    return getCfgInt(MainWindow::cfg, params, key, entry);
}

unsigned int Command::getCfgUInt(QString &params, const QString &key, const char *entry)
{
    return getCfgUInt(MainWindow::cfg, params, key, entry);
}

QString Command::createCfgDouble(const QString &key, const char *entry)
{
    return createCfgDouble(MainWindow::cfg, key, entry);
}

QString Command::createCfgUnit(const QString &key, const char *entry)
{
    return createCfgUnit(MainWindow::cfg, key, entry);
}

QString Command::createCfgInt(const QString &key, const char *entry)
{
    return createCfgInt(MainWindow::cfg, key, entry);
}

QString Command::createCfgUInt(const QString &key, const char *entry)
{
    return createCfgUInt(MainWindow::cfg, key, entry);
}

QString Command::createCfgBool(const QString &key, const char *entry)
{
    return createCfgBool(MainWindow::cfg, key, entry);
}

double Command::getCfgDouble(const CfgNode *node, QString &params, const QString &key,
                             const char *entry)
{
    const CfgDbl *item = cfgItem("Zal::GApp::Command::getCfgDouble", node, &CfgNode::getDbl, entry);
    return getDouble(params, key, item->getMin(), item->getMax());
}

double Command::getCfgUnit(const CfgNode *node, QString &params, const QString &key,
                           const char *entry)
{
    const CfgUnit *item = cfgItem("Zal::GApp::Command::getCfgUnit", node, &CfgNode::getUnit, entry);
    return getDouble(params, key, item->getMin(), item->getMax());
}

int Command::getCfgInt(const CfgNode *node, QString &params, const QString &key, const char *entry)
{
    const CfgInt *item = cfgItem("Zal::GApp::Command::getCfgInt", node, &CfgNode::getInt, entry);
    return getInt(params, key, item->getMin(), item->getMax());
}

unsigned int Command::getCfgUInt(const CfgNode *node, QString &params, const QString &key,
                                 const char *entry)
{
    const CfgUInt *item = cfgItem("Zal::GApp::Command::getCfgUInt", node, &CfgNode::getUInt, entry);
    return getUInt(params, key, item->getMin(), item->getMax());
}

QString Command::createCfgDouble(const CfgNode *node, const QString &key, const char *entry)
{
    const auto *item =
        cfgItem("Zal::GApp::Command::createCfgDouble", node, &CfgNode::getDbl, entry);
    return createDouble(key, item->getValue());
}

QString Command::createCfgUnit(const CfgNode *node, const QString &key, const char *entry)
{
    const auto *item = cfgItem("Zal::GApp::Command::createCfgUnit", node, &CfgNode::getUnit, entry);
    return createDouble(key, item->getValue());
}

QString Command::createCfgInt(const CfgNode *node, const QString &key, const char *entry)
{
    const auto *item = cfgItem("Zal::GApp::Command::createCfgInt", node, &CfgNode::getInt, entry);
    return createInt(key, item->getValue());
}

QString Command::createCfgUInt(const CfgNode *node, const QString &key, const char *entry)
{
    const auto *item = cfgItem("Zal::GApp::Command::createCfgUInt", node, &CfgNode::getUInt, entry);
    return createUInt(key, item->getValue());
}

QString Command::createCfgBool(const CfgNode *node, const QString &key, const char *entry)
{
    const auto *item = cfgItem("Zal::GApp::Command::createCfgBool", node, &CfgNode::getBool, entry);
    return createBool(key, item->getValue());
}

} // namespace GApp
} // namespace Zal
