#include "gapp_application.h"
#include "gapp_main_window.h"
#include "gapp_safemode.h"
#include "gapp_status_mgr.h"
#include "gapp_style.h"
#include "zal_dialogs.h"
#include "zal_errorlog.h"
#include "zal_translate.h"
#include <QFont>
#include <QSessionManager>
#include <cstdio>
#include <cstdlib>

#if defined(Q_OS_WIN)
#include <QAbstractNativeEventFilter>
#include <windows.h>
#endif

namespace Zal {
namespace GApp {

namespace {

#if defined(Q_OS_WIN)
// Turns the title bar's context-help button into the main window's help
// request, so the window never enters the native "what's this" mode.
class ContextHelpFilter : public QAbstractNativeEventFilter
{
public:
    bool nativeEventFilter(const QByteArray &, void *message, qintptr *result) override
    {
        MSG *msg = static_cast<MSG *>(message);
        if (msg->message == WM_SYSCOMMAND && (msg->wParam & 0xFFF0) == SC_CONTEXTHELP) {
            if (MainWindow::main_win)
                MainWindow::main_win->emitHelpRequestedSignal(nullptr);
            DefWindowProc(msg->hwnd, WM_NCPAINT, 1, 0);
            *result = 0;
            return true;
        }
        return false;
    }
};
#endif

} // namespace

Application::Application(int &argc, char **argv)
    : QApplication(argc, argv), _mouse_buttons(Qt::NoButton)
{
    QApplication::setStyle(new RynStyle);
    QApplication::setDesktopSettingsAware(false);
    QFont::insertSubstitution(QStringLiteral("Luxi Serif"), QStringLiteral("Times New Roman"));
    QFont::insertSubstitution(QStringLiteral("Luxi Mono"), QStringLiteral("Courier New"));
    QFont::insertSubstitution(QStringLiteral("Luxi Sans"), QStringLiteral("Arial"));
    // Catalogues installed before the application existed take effect now.
    Translator::setLanguage(Translator::getLanguage());
#if defined(Q_OS_WIN)
    installNativeEventFilter(new ContextHelpFilter);
#endif
    connect(this, &QGuiApplication::commitDataRequest, this,
            [this](QSessionManager &sm) { commitData(sm); }, Qt::DirectConnection);
    connect(this, &QGuiApplication::saveStateRequest, this,
            [this](QSessionManager &sm) { saveState(sm); }, Qt::DirectConnection);
}

Application::~Application() = default;

void Application::commitData(QSessionManager &sm)
{
    switch (logOffAnswer(sm.allowsInteraction())) {
    case SESSION_CANCEL:
        sm.cancel();
        break;
    case SESSION_RELEASE:
        sm.release();
        break;
    case SESSION_LEAVE_ALONE:
        break;
    }
}

void Application::saveState(QSessionManager &)
{
}

Application::SessionAnswer_t Application::logOffAnswer(bool allowsInteraction)
{
    AppStatusManager *smgr = MainWindow::smgr;
    if (!smgr || smgr->isMenuFunctionActive() || !smgr->callCanExitProgram())
        return SESSION_CANCEL;

    bool unsaved = false;
    for (unsigned int mode : smgr->getAppModes())
        for (const QString &name : smgr->getAllData(mode))
            unsaved = smgr->isDataModified(mode, name) || unsaved;
    if (!unsaved) {
        smgr->callCommitData();
        return SESSION_LEAVE_ALONE;
    }
    if (!allowsInteraction)
        return SESSION_CANCEL;

    const QString title = translate("GAPPExit_dlg", "exit title");
    const QString text = translate("GAPPExit_dlg", "there are unsaved data sets! do you really want to exit the program?");
    SaveSessionHandler *handler = SaveSessionHandler::ssh;
    if (handler && handler->canSaveSession()) {
        const int answer = GTools::YesNoCancelDialog(
            1, title, text, QString(), translate("GAPPExit_dlg", "save session"),
            translate("GAPPExit_dlg", "exit"), translate("GAPPExit_dlg", "cancel"));
        if (answer == 0) {
            if (!handler->saveSession())
                return SESSION_CANCEL;
            smgr->callCommitData();
            return SESSION_RELEASE;
        }
        if (answer == 2)
            return SESSION_CANCEL;
        smgr->callCommitData();
        return SESSION_RELEASE;
    }
    if (GTools::OkCancelDialog(1, title, text, QString(), translate("GAPPExit_dlg", "exit"),
                               translate("GAPPExit_dlg", "cancel"))) {
        smgr->callCommitData();
        return SESSION_RELEASE;
    }
    return SESSION_CANCEL;
}

void qtMessageHandler(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    const QByteArray text = message.toLocal8Bit();
    switch (type) {
    case QtDebugMsg:
        std::fprintf(stderr, "Qt Debug: %s\n", text.constData());
        break;
    case QtWarningMsg:
        std::fprintf(stderr, "Qt Warning: %s\n", text.constData());
        break;
    case QtCriticalMsg:
        std::fprintf(stderr, "Qt Critical: %s\n", text.constData());
        break;
    case QtFatalMsg:
        std::fprintf(stderr, "Qt Fatal: %s\n", text.constData());
        break;
    default:
        break;
    }
    std::fflush(stderr);
    Debug::printBacktrace(20);
    if (type == QtFatalMsg)
        std::abort();
}

} // namespace GApp
} // namespace Zal
