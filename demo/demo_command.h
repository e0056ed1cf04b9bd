#pragma once
// The base of the demo's own commands.
#include "gapp_command.h"
#include "gapp_main_window.h"
#include "zal_exception.h"
#include "zal_errorlog.h"
#include <QString>

namespace Demo {

// What the demo's commands share: sensitive by default, undoable, and the
// menu form runs the script form with the current parameters.
class DemoCommand : public Zal::GApp::Command
{
public:
    DemoCommand(const char *name, const char *menuName, const char *icon, bool toggle = false,
                bool menuFunction = true)
        : Command(menuFunction, toggle, QString::fromLatin1(name), QString::fromLatin1(menuName),
                  QString::fromLatin1(name), icon)
    {
    }
    bool isChecked() const override { return false; }
    bool isMenuSensitive() const override { return true; }
    bool isScriptSensitive() const override { return isMenuSensitive(); }
    QString getParameterString() override { return QString(); }
    bool parseParameterString(const QString &, bool, QString *, Zal::ErrorLog *) override { return true; }
    Interactive_t isInteractive() override { return INTERACTIVE_NO; }
    bool isUndoRedoPossible() const override { return true; }
    bool executeMenu() override
    {
        QString result, code;
        Zal::ErrorLog log;
        return executeScript(&result, &code, &log);
    }
    using Command::executeScript;

protected:
    static bool fail(QString *code, Zal::ErrorLog *log, const char *errorCode, const QString &text)
    {
        *code = QString::fromLatin1(errorCode);
        *log << text << Zal::END_LOG;
        return false;
    }
    // A parameter string that did not parse: the parser's text as the message.
    bool parameterError(const Zal::Exception &e, QString *code, Zal::ErrorLog *log) const
    {
        return fail(code, log, Zal::GApp::PARAMETER_ERROR, createErrorString(e.getText()));
    }
};

} // namespace Demo
