#pragma once
#include "gapp_export.h"
#include <QString>
#include <vector>

namespace Zal {
class ErrorLog;
namespace GApp {

// Runs an external program synchronously from the GUI thread: the GUI keeps
// repainting but takes no input, and Escape offers to abort the program.
// args: the program, then its arguments. input, if not empty, goes to the
// program's standard input (UTF-8), which is then closed; without input it
// stays open, so a program that reads it waits until the user aborts.
// output and errorOutput (may be null) receive what it wrote, less one
// trailing line feed. *aborted is set to true only when the user aborted.
// Failures are written to log (may be null). True only when the program
// started, was not aborted and exited normally with code 0.
GAPP_EXPORT bool ExecuteProcess(const std::vector<QString> &args, const QString &input, QString *output,
                                QString *errorOutput, bool *aborted, ErrorLog *log);

// Writes command into a temporary command file in the configured temporary
// directory and runs it as ExecuteProcess would: a batch file on Windows, a
// script run by /bin/sh elsewhere. The file is removed afterwards.
GAPP_EXPORT bool ExecuteShellCommand(const QString &command, const QString &input, QString *output,
                                     QString *errorOutput, bool *aborted, ErrorLog *log);

} // namespace GApp
} // namespace Zal
