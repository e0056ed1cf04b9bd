// The application event filter and the main window's part in it: GUI locking,
// Escape and F1, the remote keyboard, shortcut keys, the maximise notice,
// drag and drop, and the event traces.
#include "gapp_event_filter.h"
#include "gapp_ccontainer.h"
#include "gapp_main_window.h"
#include "gapp_safemode.h"
#include "gapp_shortcut.h"
#include "gapp_view_widget.h"
#include "zal_cfg_profile.h"
#include "zal_dialogs.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_gui_thread_event.h"
#include "zal_services.h"
#include <QChildEvent>
#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
#include <QScreen>
#include <QToolBar>
#include <QToolButton>
#include <algorithm>

namespace Zal {
namespace GApp {

EventFilter *EventFilter::_instance = nullptr;

namespace {

// Shows the renderer's size limit once the running menu function is over, so
// that the notice does not interrupt it.
class MaximizeWindowCB : public MenuFunctionFinishedCallback
{
public:
    void menuFunctionFinished() override { GTools::InfoDialog("gapp_window_size_limited"); }
};

class MaximizeWindowEvent : public GUIThreadEvent
{
public:
    void execute() override { MenuFunctionFinishedCallback::registerCB(new MaximizeWindowCB); }
};

bool isUserInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::FocusIn:
    case QEvent::FocusOut:
    case QEvent::Enter:
    case QEvent::Leave:
    case QEvent::Close:
    case QEvent::Wheel:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::DragLeave:
    case QEvent::Drop:
    case QEvent::ContextMenu:
    case QEvent::Shortcut:
        return true;
    default:
        return false;
    }
}

bool isEscapePress(const QEvent *event)
{
    return event->type() == QEvent::KeyPress && static_cast<const QKeyEvent *>(event)->key() == Qt::Key_Escape;
}

// Inside the window of `window` (not in a window of its own).
bool liesInside(const QWidget *widget, const QWidget *window)
{
    return widget == window || window->isAncestorOf(widget);
}

// "Class::name' address (0x...)", the object's part of a trace line.
QString describe(const QObject *object)
{
    QString text = QLatin1String(object->metaObject()->className());
    if (!object->objectName().isEmpty())
        text += QStringLiteral("::") + object->objectName();
    return text + QStringLiteral("' address (") + QString::asprintf("%p", static_cast<const void *>(object)) +
           QLatin1Char(')');
}

void printEvent(const QObject *receiver, const QEvent *event)
{
    const int type = int(event->type());
    QString line = QStringLiteral("Event type %1 (%2)").arg(type).arg(QLatin1String(EventFilter::getEventTypeName(type)));
    line += QStringLiteral(" widget '") + describe(receiver);
    line += QStringLiteral(" custom ") + QLatin1Char(type >= 1000 ? '1' : '0');
    if (const QObject *parent = receiver->parent())
        line += QStringLiteral(" parent '") + describe(parent);
    else
        line += QStringLiteral(" no parent");
    if (event->type() == QEvent::ChildAdded || event->type() == QEvent::ChildRemoved) {
        if (const QObject *child = static_cast<const QChildEvent *>(event)->child())
            line += QStringLiteral(" child '") + describe(child);
    }
    Debug::printTrace(line);
}

// A key that a widget in a docked toolbar ignores travels on to the toolbar
// and the main window; it must not be dispatched there either. The event
// that was declined in the toolbar is remembered to recognise it.
struct DeclinedKey
{
    const QKeyEvent *event = nullptr;
    quint64 timestamp = 0;
    QPointer<QWidget> widget;
};
DeclinedKey g_declined;

bool isDeclinedKeyTravelling(const QKeyEvent *key, const QWidget *receiver)
{
    return g_declined.event == key && g_declined.timestamp == key->timestamp() && g_declined.widget &&
           receiver->isAncestorOf(g_declined.widget);
}

// The command a map binds to the key, if the profile shows it and it exists.
Command *shortcutCommand(const ShortcutData *map, const QKeyEvent *key)
{
    const QString name = map->find(key);
    if (name.isEmpty())
        return nullptr;
    if (const Cfg::ParsedProfile *profile = Cfg::Profile::instance()) {
        if (profile->isCommandHidden(name))
            return nullptr;
    }
    return CommandContainer::getCommand(name);
}

} // namespace

// ---- EventFilter --------------------------------------------------------------------

EventFilter::EventFilter(QObject *parent) : QObject(parent)
{
    _instance = this;
    if (QCoreApplication *app = QCoreApplication::instance())
        app->installEventFilter(this);
}

EventFilter::~EventFilter()
{
    if (QCoreApplication *app = QCoreApplication::instance())
        app->removeEventFilter(this);
    if (_instance == this)
        _instance = nullptr;
}

bool EventFilter::eventFilter(QObject *watched, QEvent *event)
{
    // Every event of the process comes here: those that are neither input nor
    // traced nor a window-state change pass at once (the base filter would
    // answer false as well).
    const QEvent::Type type = event->type();
    if (!MainWindow::debug_events && !isUserInput(type) && type != QEvent::WindowStateChange)
        return false;
    MainWindow *window = MainWindow::main_win;
    if (window && window->appEventFilter(watched, event))
        return true;
    return QObject::eventFilter(watched, event);
}

void EventFilter::viewWidgetDestroyed(QObject *obj)
{
    ViewWidgetContainer::widgetWasDestroyed(obj);
}

void EventFilter::removeStatusMessage()
{
    if (MainWindow::main_win)
        MainWindow::main_win->setMessage(QString(), 0);
}

const char *EventFilter::getEventTypeName(int type)
{
    switch (type) {
    case 0: return "None";
    case 1: return "Timer";
    case 2: return "MouseBtnPress";
    case 3: return "MouseBtnRelease";
    case 4: return "MouseBtnDblClick";
    case 5: return "MouseMove";
    case 6: return "KeyPress";
    case 7: return "KeyRelease";
    case 8: return "FocusIn";
    case 9: return "FocusOut";
    case 10: return "Enter";
    case 11: return "Leave";
    case 12: return "Paint";
    case 13: return "Move";
    case 14: return "Resize";
    case 15: return "Create";
    case 16: return "Destroy";
    case 17: return "Show";
    case 18: return "Hide";
    case 19: return "Close";
    case 20: return "Quit";
    case 21: return "ParentChange";
    case 22: return "ThreadChange";
    case 24: return "WindowActivate";
    case 25: return "WindowDeactivate";
    case 26: return "ShowToParent";
    case 27: return "HideToParent";
    case 31: return "Wheel";
    case 33: return "CaptionChange";
    case 34: return "IconChange";
    case 35: return "AppWindowIconChange";
    case 36: return "AppFontChange";
    case 37: return "AppLayoutDirChange";
    case 38: return "AppPalChange";
    case 39: return "PaletteChange";
    case 40: return "Clipboard";
    case 42: return "Speech";
    case 43: return "MetaCall";
    case 50: return "SockAct";
    case 51: return "ShortcutOverride";
    case 52: return "DeferredDelete";
    case 60: return "DragEnter";
    case 61: return "DragMove";
    case 62: return "DragLeave";
    case 63: return "Drop";
    case 64: return "DragResponse";
    case 68: return "ChildAdded";
    case 69: return "ChildPolished";
    case 71: return "ChildRemoved";
    case 73: return "ShowWindowRqst";
    case 74: return "PolishRqst";
    case 75: return "Polish";
    case 76: return "LayoutRequest";
    case 77: return "UpdateRequest";
    case 78: return "UpdateLater";
    case 79: return "EmbeddingControl";
    case 80: return "ActivateControl";
    case 81: return "DeactivateCtrl";
    case 82: return "ContextMenu";
    case 83: return "InputMethod";
    case 86: return "AccessibilityPrepare";
    case 87: return "TabletMove";
    case 88: return "LocaleChange";
    case 89: return "LanguageChange";
    case 90: return "LayoutDir.Change";
    case 91: return "Style";
    case 92: return "TabletPress";
    case 93: return "TabletRelease";
    case 94: return "OkRequest";
    case 95: return "HelpRequest";
    case 96: return "IconDrag";
    case 97: return "FontChange";
    case 98: return "EnabledChange";
    case 99: return "ActivationChange";
    case 100: return "StyleChange";
    case 101: return "IconTextChange";
    case 102: return "ModifiedChange";
    case 103: return "WindowBlocked";
    case 104: return "WindowUnblocked";
    case 105: return "WindowStateChange";
    case 109: return "MouseTrackingChange";
    case 110: return "ToolTip";
    case 111: return "WhatsThis";
    case 112: return "StatusTip";
    case 113: return "ActionChange";
    case 114: return "ActionAdded";
    case 115: return "ActionRemoved";
    case 116: return "FileOpen";
    case 117: return "Shortcut";
    case 118: return "WhatsThisClicked";
    case 119: return "AccessibilityHelp";
    case 120: return "ToolbarChange";
    case 121: return "AppActivated";
    case 122: return "AppDeactivated";
    case 123: return "QueryWhatsThis";
    case 124: return "EnterWhatsThis";
    case 125: return "LeaveWhatsThis";
    case 126: return "ZOrderChange";
    case 127: return "HoverEnter";
    case 128: return "HoverLeave";
    case 129: return "HoverMove";
    case 130: return "AccessibilityDesc";
    case 131: return "ParentAboutToChange";
    case 132: return "WinEventAct";
    case 152: return "AcceptDropsChange";
    case 153: return "MenubarUpdate";
    case 154: return "ZeroTimer";
    case 155: return "GS MouseMove";
    case 156: return "GS MousePress";
    case 157: return "GS MouseRelease";
    case 158: return "GS MouseDblClick";
    case 159: return "GS ContextMenu";
    case 160: return "GS HoverEnter";
    case 161: return "GS HoverMove";
    case 162: return "GS HoverLeave";
    case 163: return "GS Help";
    case 164: return "GS DragEnter";
    case 165: return "GS DragMove";
    case 166: return "GS DragLeave";
    case 167: return "GS Drop";
    case 168: return "GS Wheel";
    case 169: return "KeyboardLayoutChange";
    case 170: return "DynamicPropertyChange";
    case 171: return "TabletEnterProximity";
    case 172: return "TabletLeaveProximity";
    case 173: return "NonClientAreaMouseMove";
    case 174: return "NonClientAreaMouseButtonPress";
    case 175: return "NonClientAreaMouseButtonRelease";
    case 176: return "NonClientAreaMouseButtonDblClick";
    case 177: return "MacSizeChange";
    case 178: return "ContentsRectChang";
    case 179: return "MacGLWindowChange";
    case 1000: return "User";
    case 65535: return "MaxUser";
    default: return "Unknown";
    }
}

// ---- MainWindow: GUI lock -----------------------------------------------------------

void MainWindow::lockGUI(QWidget *widget)
{
    if (std::find(_locked_widgets.begin(), _locked_widgets.end(), widget) != _locked_widgets.end())
        throw ZAL_PROG_ERROR("Zal::GApp::MainWindow::lockGUI", QStringLiteral("the widget is already used for gui locking"));
    _locked_widgets.push_back(widget);
}

void MainWindow::unlockGUI(QWidget *widget)
{
    const auto it = std::find(_locked_widgets.begin(), _locked_widgets.end(), widget);
    if (it == _locked_widgets.end())
        throw ZAL_PROG_ERROR("Zal::GApp::MainWindow::unlockGUI", QStringLiteral("the widget is not used for gui locking"));
    _locked_widgets.erase(it);
}

void MainWindow::setCancelWidget(QWidget *widget)
{
    if (_cancel_widget)
        ZAL_PROG_ERROR("Zal::GApp::MainWindow::setCancelWidget", QStringLiteral("cancel widget already set")).report();
    _cancel_widget = widget;
}

void MainWindow::unsetCancelWidget(QWidget *widget)
{
    if (widget != _cancel_widget)
        ZAL_PROG_ERROR("Zal::GApp::MainWindow::unsetCancelWidget", QStringLiteral("try to unset a different cancel widget"))
            .report();
    _cancel_widget = nullptr;
}

// ---- MainWindow: the filter's decision ----------------------------------------------

bool MainWindow::isInForeignModalWindow(QObject *receiver) const
{
    if (!receiver->isWidgetType())
        return false;
    const QWidget *window = static_cast<QWidget *>(receiver)->window();
    return window != this && window->isModal();
}

bool MainWindow::applyLockRule(QObject *receiver, QEvent *event)
{
    // Only the locked widgets themselves pass, not their children.
    if (!_locked_widgets.empty() && !isInForeignModalWindow(receiver) &&
        std::find(_locked_widgets.begin(), _locked_widgets.end(), receiver) != _locked_widgets.end())
        return false;
    if (_cancel_widget && receiver == _cancel_widget)
        return false;
    // No window closes while the lock lasts.
    if (event->type() == QEvent::Close)
        event->ignore();
    return true;
}

bool MainWindow::dispatchShortcut(QKeyEvent *key, QWidget *widget)
{
    // The override map applies everywhere, even in menus and toolbars.
    if (const ShortcutData *map = ShortcutContainer::getOverrideData()) {
        if (Command *cmd = shortcutCommand(map, key)) {
            postExecuteCommandEvent(cmd, AppStatusManager::CommandStartMode_t(0));
            return true;
        }
    }
    if (qobject_cast<QMenu *>(widget) || widget->window() != this || isDeclinedKeyTravelling(key, widget))
        return false;
    for (QWidget *w = widget; w; w = w->parentWidget()) {
        if (qobject_cast<QToolBar *>(w)) {
            g_declined = DeclinedKey{key, key->timestamp(), widget};
            return false;
        }
    }
    if (const ShortcutData *map = ShortcutContainer::getActiveData()) {
        if (Command *cmd = shortcutCommand(map, key)) {
            postExecuteCommandEvent(cmd, AppStatusManager::CommandStartMode_t(0));
            return true;
        }
    }
    return false;
}

bool MainWindow::appEventFilter(QObject *receiver, QEvent *event)
{
    if (debug_events)
        printEvent(receiver, event);
    const QEvent::Type type = event->type();
    if (!isUserInput(type)) {
        if (type == QEvent::WindowStateChange && receiver == this && isVisible() && isMaximized()) {
            if (const QScreen *desktop = screen()) {
                const QRect area = desktop->geometry();
                if ((maximumWidth() != 0 && maximumWidth() < area.width()) ||
                    (maximumHeight() != 0 && maximumHeight() < area.height()))
                    QCoreApplication::postEvent(this, new MaximizeWindowEvent);
            }
        }
        return false;
    }

    QKeyEvent *key = (type == QEvent::KeyPress || type == QEvent::KeyRelease) ? static_cast<QKeyEvent *>(event)
                                                                               : nullptr;
    QWidget *widget = receiver->isWidgetType() ? static_cast<QWidget *>(receiver) : nullptr;

    if (_cancel_enabled) {
        if (isEscapePress(event) || (receiver == _cancel_button && type == QEvent::MouseButtonRelease)) {
            _abort_requested = true;
            return true;
        }
        return applyLockRule(receiver, event);
    }

    if (isEscapePress(event) && !_escape_suppressed) {
        bool discard = false;
        emit escapePressedSignal(receiver, &discard);
        if (discard)
            return true;
        // Escape in the main window belongs to a semi-modal dialog outside it.
        QWidget *dialogParent = GTools::getParentWidget();
        if (widget && liesInside(widget, this) && dialogParent && !liesInside(dialogParent, this)) {
            QCoreApplication::postEvent(dialogParent,
                                        new QKeyEvent(key->type(), key->key(), key->modifiers(), key->text(),
                                                      key->isAutoRepeat(), quint16(key->count())));
            return true;
        }
    }

    if (_input_blocked)
        return applyLockRule(receiver, event);
    // Widgets of modal dialogs opened during the lock stay usable.
    if (!_locked_widgets.empty() && !isInForeignModalWindow(receiver))
        return applyLockRule(receiver, event);

    if (key && widget) {
        if (RemoteKeyboardHandler *handler = RemoteKeyboardHandler::instance()) {
            if ((!handler->grabKeysOnMainWindowOnly() || widget->window() == this) && handler->keyEventFilter(key))
                return true;
        }
    }

    if (type == QEvent::KeyPress && widget) {
        if (key->key() == Qt::Key_F1) {
            emitHelpRequestedSignal(widget);
            return true;
        }
        return dispatchShortcut(key, widget);
    }
    return false;
}

// ---- MainWindow: drag and drop ------------------------------------------------------

void MainWindow::dragEnterEvent(QDragEnterEvent *e)
{
    const bool menuFunction = smgr && smgr->isMenuFunctionActive();
    if (!menuFunction && int(_select_command_mode) == 0 && DropInterface::instance() && e->mimeData() &&
        e->mimeData()->hasUrls()) {
        e->setDropAction(Qt::CopyAction);
        e->accept();
        return;
    }
    e->ignore();
}

void MainWindow::dropEvent(QDropEvent *e)
{
    e->setDropAction(Qt::CopyAction);
    e->accept();
    if (DropInterface *drop = DropInterface::instance()) {
        QList<QUrl> urls = e->mimeData() ? e->mimeData()->urls() : QList<QUrl>();
        drop->handleDrop(urls);
    }
}

} // namespace GApp
} // namespace Zal
