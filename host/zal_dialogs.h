#pragma once
#include "gapp_export.h"
#include <QString>
#include <QStringList>
#include <deque>
#include <functional>
#include <map>
#include <vector>

class QWidget;

namespace Zal {
class CfgNode;
namespace GTools {

// What a modal dialog of the host layer asked.
struct DialogRequest
{
    QString kind;      // "error", "ok", "okcancel", "yesnocancel", "info"
    int type = 0;      // the caller's dialog type, passed through
    QString title;
    QString text;
    QString third;     // the optional third text
    QString code;      // error code or information identifier
    QStringList buttons;
};

// The one seam through which every modal dialog of the host layer passes.
// Without a handler a real QMessageBox is shown; with one, the handler
// answers instead (the index of the chosen button), so nothing blocks.
class GAPP_EXPORT DialogSeam
{
public:
    using Handler = std::function<int(const DialogRequest &)>;
    // Installs a handler and returns the previous one; an empty one restores
    // the real dialogs.
    static Handler setHandler(Handler handler);
    static bool hasHandler();
    // Shows or answers the request; the result is the chosen button's index.
    static int ask(const DialogRequest &request);
};

// Answers dialogs from a script for tests and headless runs: records every
// request and answers with the queued answers in order, then with the default.
// Installs itself on construction and puts the previous handler back when it
// is destroyed.
class GAPP_EXPORT ScriptedDialogs
{
public:
    explicit ScriptedDialogs(int defaultAnswer = 0);
    ~ScriptedDialogs();
    ScriptedDialogs(const ScriptedDialogs &) = delete;
    ScriptedDialogs &operator=(const ScriptedDialogs &) = delete;

    void answer(int buttonIndex);
    const std::vector<DialogRequest> &requests() const { return _requests; }
    void clear() { _requests.clear(); }

private:
    int _default;
    std::deque<int> _answers;
    std::vector<DialogRequest> _requests;
    DialogSeam::Handler _previous;
};

// The application's main widget, the parent of dialogs; set by the main window.
GAPP_EXPORT extern QWidget *main_widget;
// The widget that dialogs should be parented to now: the active modal widget
// if there is one, else the shown semi-modal dialog, else the main widget.
GAPP_EXPORT QWidget *getParentWidget();

// An error with its code; the registered message of the code comes first,
// then the caller's text.
GAPP_EXPORT void ErrorDialog(const QString &code, const QString &text);
GAPP_EXPORT void OkDialog(int type, const QString &title, const QString &text,
                          const QString &third = QString());
// True when the first button (ok) was chosen.
GAPP_EXPORT bool OkCancelDialog(int type, const QString &title, const QString &text,
                                const QString &third, const QString &okText,
                                const QString &cancelText);
// 0, 1 or 2 for the three buttons in the order given.
GAPP_EXPORT int YesNoCancelDialog(int type, const QString &title, const QString &text,
                                  const QString &third, const QString &button0,
                                  const QString &button1, const QString &button2);
// Shows the registered information message unless the user switched it off
// ("do not show again", the second button). Unknown identifiers show nothing.
GAPP_EXPORT void InfoDialog(const char *id);

// Error messages by code, as registered by the library and the host.
class GAPP_EXPORT ErrorMessageContainer
{
public:
    // Replaces an earlier registration of the same code (keeping its place).
    static void registerError(const char *code, const QString &text, const QString &textWt);
    static bool contains(const QString &code);
    static QString getText(const QString &code);
    static QString getTextWt(const QString &code);
    // The codes in the order of their first registration.
    static QStringList getCodes();
    static void deleteAllErrorMessages();

    // When set, error dialogs also write their code and text to standard output.
    static bool show_error_text;

private:
    struct Entry
    {
        QString text;
        QString textWt;
    };
    static std::map<QString, Entry> _errors;
    static QStringList _order;
};

// Information messages by identifier, each of which the user can switch off.
class GAPP_EXPORT InfoMessageContainer
{
public:
    static void registerInfo(const char *id, const QString &text);
    static bool contains(const QString &id);
    static QString getText(const QString &id);
    static bool isEnabled(const QString &id);
    static void setEnabled(const QString &id, bool enabled);
    // The states live in the boolean items of the node's child node
    // "InfoMessages" (item key: the identifier), when the host created that
    // child; without it the states last for the session only.
    static void readInfoStatus(CfgNode *node);
    static void writeInfoStatus(CfgNode *node);
    static void deleteAllInfoMessages();

private:
    struct Entry
    {
        QString text;
        bool enabled = true;
    };
    static std::map<QString, Entry> _infos;
};

} // namespace GTools
} // namespace Zal
