#pragma once
#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QString>
#include <vector>

class QEventLoop;
class QTimer;

namespace Zal {
class ErrorLog;
namespace GApp {

// One run of an external program; lives on the stack of ExecuteProcess.
class ShellExecuter : public QObject
{
    Q_OBJECT

public:
    ShellExecuter();
    ~ShellExecuter() override;

    bool execute(const std::vector<QString> &args, const QString &input, QString *output, QString *errorOutput,
                 bool *aborted, ErrorLog *log);

private slots:
    void escapeButtonHandler(QObject *object, bool *discard);
    void processExited();
    void processError(QProcess::ProcessError);
    void checkRunning();

private:
    void endWait();

    QProcess *_process = nullptr;
    QTimer *_timer = nullptr;
    QByteArray _standard_output;
    QByteArray _standard_error;
    bool _aborted = false;
    bool _finished = false;
    bool _dialog_open = false;
    QEventLoop *_event_loop = nullptr;
};

} // namespace GApp
} // namespace Zal
