// External programs run from the GUI thread: a local event loop waits for
// the program while the GUI repaints, input is swallowed by a GUI lock, and
// Escape asks whether to abort.
#include "gapp_shell_executer.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_shell_executer_p.h"
#include "gapp_status_mgr.h"
#include "zal_cfg.h"
#include "zal_dialogs.h"
#include "zal_errorlog.h"
#include "zal_os.h"
#include "zal_translate.h"
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <memory>

namespace Zal {
namespace GApp {

namespace {

// How long a program may take to start before it counts as failed.
constexpr int START_TIMEOUT_MS = 30000;
// The first look at whether the program still runs, and every later one.
constexpr int FIRST_CHECK_MS = 5000;
constexpr int NEXT_CHECK_MS = 1000;

// Drawing stays locked for the whole call, also when something throws.
class DrawingLock
{
public:
    explicit DrawingLock(MainWindow *window) : _window(window)
    {
        if (_window)
            _window->lockDrawing();
    }
    ~DrawingLock()
    {
        if (_window)
            _window->unlockDrawing();
    }
    DrawingLock(const DrawingLock &) = delete;
    DrawingLock &operator=(const DrawingLock &) = delete;

private:
    QPointer<MainWindow> _window;
};

// Locks the GUI with a label that is never shown, so every input event is
// swallowed while the wait lasts; Escape still reaches the handler first.
class InputLock
{
public:
    explicit InputLock(MainWindow *window) : _window(window)
    {
        if (!_window)
            return;
        _label = new QLabel;
        _label->setObjectName(QStringLiteral("dummy"));
        _window->lockGUI(_label);
    }
    ~InputLock()
    {
        QObject::disconnect(escape);
        if (_window)
            _window->unlockGUI(_label);
        delete _label;
    }
    InputLock(const InputLock &) = delete;
    InputLock &operator=(const InputLock &) = delete;

    QMetaObject::Connection escape;

private:
    QPointer<MainWindow> _window;
    QLabel *_label = nullptr;
};

// What a program wrote, as text, less one trailing line feed.
QString outputText(const QByteArray &bytes)
{
    QString text = QString::fromLocal8Bit(bytes);
    if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);
    return text;
}

QString temporaryDirectory()
{
    if (MainWindow::cfg) {
        if (CfgFileName *item = MainWindow::cfg->getFileName(ZalString(CFG_TEMP_DIR)))
            if (!item->getValue().isEmpty())
                return item->getValue();
    }
    return QDir::tempPath();
}

// Creates the next free command file "<dir>/tmp_<n>" with n counted up from
// the process id. NewOnly makes "does not exist yet" and "create" one step,
// so two processes never write into the same file.
bool createCommandFile(QFile *file, const QString &directory, const char *suffix)
{
    for (long long n = OS::getPID();; ++n) {
        const QString name = QStringLiteral("%1/tmp_%2%3").arg(directory, QString::number(n), QLatin1String(suffix));
        if (QFile::exists(name))
            continue;
        file->setFileName(name);
        if (file->open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Text))
            return true;
        if (!QFile::exists(name))
            return false;
    }
}

// Removes the command file however the run ends.
class FileRemover
{
public:
    explicit FileRemover(const QString &name) : _name(name) {}
    ~FileRemover() { OS::unlink(_name); }
    FileRemover(const FileRemover &) = delete;
    FileRemover &operator=(const FileRemover &) = delete;

private:
    QString _name;
};

} // namespace

ShellExecuter::ShellExecuter() = default;

// The process, loop and timer belong to the call that made them.
ShellExecuter::~ShellExecuter() = default;

bool ShellExecuter::execute(const std::vector<QString> &args, const QString &input, QString *output,
                            QString *errorOutput, bool *aborted, ErrorLog *log)
{
    MainWindow *window = MainWindow::main_win;
    bool result = false;
    {
        DrawingLock drawing(window);
        std::unique_ptr<QProcess> process(new QProcess);
        std::unique_ptr<QEventLoop> loop(new QEventLoop);
        _process = process.get();
        _event_loop = loop.get();
        _aborted = false;
        _finished = false;
        _dialog_open = false;

        const QStringList all(args.begin(), args.end());
        const QString commandLine = all.join(QLatin1Char(' '));
        connect(_process, &QProcess::finished, this, &ShellExecuter::processExited);
        connect(_process, &QProcess::errorOccurred, this, &ShellExecuter::processError);
        _standard_output.clear();
        _standard_error.clear();

        // A Python of the host must not leak into the child's Python.
        QStringList environment = QProcess::systemEnvironment();
        environment.erase(std::remove_if(environment.begin(), environment.end(),
                                         [](const QString &entry) {
                                             return entry.startsWith(QLatin1String("PYTHONHOME="));
                                         }),
                          environment.end());
        _process->setEnvironment(environment);

        if (!all.isEmpty())
            _process->start(all.first(), all.mid(1), QIODevice::ReadWrite);
        if (all.isEmpty() || !_process->waitForStarted(START_TIMEOUT_MS)) {
            if (log)
                *log << translate("GApp_ShellExecuter_err", "can't start shell process") << END_LOG;
        } else {
            // Only given input is followed by its end; without input the
            // channel stays open and a program that reads it waits for Escape.
            if (!input.isEmpty()) {
                _process->write(input.toUtf8());
                _process->closeWriteChannel();
            }

            {
                InputLock lock(window);
                if (window)
                    lock.escape = connect(window, &MainWindow::escapePressedSignal, this,
                                          &ShellExecuter::escapeButtonHandler);
                std::unique_ptr<QTimer> timer(new QTimer);
                _timer = timer.get();
                _timer->setSingleShot(true);
                connect(_timer, &QTimer::timeout, this, &ShellExecuter::checkRunning);
                _timer->start(FIRST_CHECK_MS);
                // The program may have ended already; exit() before exec() would be lost.
                if (!_finished)
                    _event_loop->exec();
                _timer = nullptr;
            }

            // The loop also ends when the application quits; the program
            // must not outlive the call then.
            if (_process->state() != QProcess::NotRunning) {
                _process->kill();
                _process->waitForFinished(START_TIMEOUT_MS);
            }

            // QProcess has buffered all of it; nothing limits its size.
            _standard_output = _process->readAllStandardOutput();
            _standard_error = _process->readAllStandardError();
            const QString out = outputText(_standard_output);
            const QString err = outputText(_standard_error);
            if (output)
                *output = out;
            if (errorOutput)
                *errorOutput = err;

            if (_aborted) {
                if (log)
                    *log << translate("GApp_ShellExecuter_err", "shell command execution aborted") << END_LOG;
                if (aborted)
                    *aborted = true;
            } else if (_process->exitStatus() == QProcess::NormalExit && _process->exitCode() == 0) {
                result = true;
            } else if (log) {
                *log << translate("GApp_ShellExecuter_err", "can't execute:") << QStringLiteral(" ") << commandLine
                     << QStringLiteral("\n");
                if (_process->exitStatus() == QProcess::NormalExit)
                    *log << translate("GApp_ShellExecuter_err", "exit code") << QStringLiteral(" ")
                         << QString::number(_process->exitCode());
                else
                    *log << translate("GApp_ShellExecuter_err", "abnormal exit");
                if (!err.isEmpty())
                    *log << QStringLiteral("\n") << err;
                *log << END_LOG;
            }
        }
        _process = nullptr;
        _event_loop = nullptr;
    }
    // Views refresh what the program may have changed.
    if (AppStatusManager *smgr = MainWindow::smgr)
        smgr->emitSelectionChanged(smgr->getAppMode(), SelectionMode_t(2));
    return result;
}

void ShellExecuter::endWait()
{
    _finished = true;
    _event_loop->exit(0);
}

void ShellExecuter::escapeButtonHandler(QObject *, bool *discard)
{
    if (!_process || _dialog_open)
        return;
    if (discard)
        *discard = true;
    QApplication::setOverrideCursor(Qt::ArrowCursor);
    _dialog_open = true;
    const bool confirmed = GTools::OkCancelDialog(
        0, translate("GApp_ShellExecuter_err", "abort computation"),
        translate("GApp_ShellExecuter_err", "abort the computation?"), QString(), translate("GAPPExecute", "ok"),
        translate("GAPPExecute", "cancel"));
    _dialog_open = false;
    QApplication::restoreOverrideCursor();
    if (confirmed) {
        // A program that cannot be asked to end is killed at once.
        if (!OS::processCanBeTerminated(_process->processId()))
            _aborted = true;
        if (_aborted) {
            _process->kill();
        } else {
            _process->terminate();
            _aborted = true;
        }
    }
    // An end that arrived while the question was showing ends the wait now
    // rather than at the next check.
    if (!_finished && _process->state() == QProcess::NotRunning)
        endWait();
}

void ShellExecuter::processExited()
{
    if (_finished || _dialog_open)
        return;
    endWait();
}

void ShellExecuter::processError(QProcess::ProcessError)
{
    // Start failures are seen by waitForStarted, everything else by finished().
}

void ShellExecuter::checkRunning()
{
    if (!_finished && _process->state() == QProcess::NotRunning && !_dialog_open) {
        endWait();
        _process->kill();
    } else {
        _timer->start(NEXT_CHECK_MS);
    }
}

bool ExecuteProcess(const std::vector<QString> &args, const QString &input, QString *output, QString *errorOutput,
                    bool *aborted, ErrorLog *log)
{
    ShellExecuter executer;
    return executer.execute(args, input, output, errorOutput, aborted, log);
}

bool ExecuteShellCommand(const QString &command, const QString &input, QString *output, QString *errorOutput,
                         bool *aborted, ErrorLog *log)
{
#ifdef Q_OS_WIN
    // The batch interpreter reads "%" as the start of a variable.
    QString text = command;
    text.replace(QLatin1Char('%'), QLatin1String("%%"));
    const char *suffix = ".bat";
#else
    const QString &text = command;
    const char *suffix = ".sh";
#endif
    QFile file;
    if (!createCommandFile(&file, temporaryDirectory(), suffix)) {
        if (log)
            *log << translate("GApp_ShellExecuter_err", "can't write shell command file:") << QStringLiteral(" ")
                 << file.fileName() << END_LOG;
        return false;
    }
    FileRemover remover(file.fileName());
    // Text mode writes the line end the interpreter expects.
    const bool written = file.write(text.toLocal8Bit() + '\n') >= 0 && file.flush();
    file.close();
    if (!written) {
        if (log)
            *log << translate("GApp_ShellExecuter_err", "can't write shell command file:") << QStringLiteral(" ")
                 << file.fileName() << END_LOG;
        return false;
    }
#ifdef Q_OS_WIN
    const std::vector<QString> args{file.fileName()};
#else
    const std::vector<QString> args{QStringLiteral("/bin/sh"), file.fileName()};
#endif
    return ExecuteProcess(args, input, output, errorOutput, aborted, log);
}

} // namespace GApp
} // namespace Zal
