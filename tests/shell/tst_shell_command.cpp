#include "tst_shell_command.h"
#include "gapp_init.h"
#include "gapp_main_window.h"
#include "gapp_shell_executer.h"
#include "gapp_status_mgr.h"
#include "test_util.h"
#include "zal_cfg.h"
#include "zal_dialogs.h"
#include "zal_errorlog.h"
#include "zal_os.h"
#include <QApplication>
#include <QPushButton>
#include <QThread>
#include <QTimer>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <utility>
#include <sys/stat.h>

using namespace Zal;
using namespace Zal::GApp;

namespace {

const QString HELPER = QStringLiteral(ZAL_TEST_HELPER);

struct Result
{
    bool ok = false;
    QString out = QStringLiteral("untouched"), err = QStringLiteral("untouched");
    bool aborted = false;
    QStringList log;
};

Result runProcess(const QStringList &args, const QString &input = QString())
{
    Result r;
    ErrorLog log;
    r.ok = ExecuteProcess(std::vector<QString>(args.begin(), args.end()), input, &r.out, &r.err, &r.aborted, &log);
    r.log = log.getEntries();
    return r;
}

Result runShell(const QString &command)
{
    Result r;
    ErrorLog log;
    r.ok = ExecuteShellCommand(command, QString(), &r.out, &r.err, &r.aborted, &log);
    r.log = log.getEntries();
    return r;
}

// A FIFO for handshakes with a child: opening it blocks until the other side
// opens it too, so each side knows where the other one is.
class Fifo
{
public:
    Fifo() : path(dir.filePath(QStringLiteral("fifo"))) { ::mkfifo(QFile::encodeName(path).constData(), 0600); }
    ~Fifo()
    {
        // A child that died before reading must not leave the writer blocked.
        if (_writer) {
            const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK);
            _writer->wait();
            ::close(fd);
        }
    }
    // Sends a line from a thread of its own, since the open waits for the child.
    void sendLater(const QByteArray &line)
    {
        _writer.reset(QThread::create([this, line] {
            QFile f(path);
            if (f.open(QIODevice::WriteOnly))
                f.write(line);
        }));
        _writer->start();
    }
    QByteArray receive()
    {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readLine() : QByteArray();
    }

    QTemporaryDir dir;
    const QString path;

private:
    std::unique_ptr<QThread> _writer;
};

QStringList commandFiles(const QString &directory)
{
    return QDir(directory).entryList({QStringLiteral("tmp_*")}, QDir::Files);
}

} // namespace

struct TestShellCommand::Fixture
{
    TestUtil::Environment env;
    GTools::ScriptedDialogs dialogs;
    QStringList args{QStringLiteral("prog")};
    MainWindow *window;
    Fixture() : window(new MainWindow("shell command test", new AppStatusManager, InitLibrary(), args))
    {
        window->show();
    }
    ~Fixture() { delete window; }
    QString tempDir() const { return env.user.filePath(QStringLiteral("tmp")); }
};

void TestShellCommand::init()
{
    _f = new Fixture;
}

void TestShellCommand::cleanup()
{
    delete _f;
    _f = nullptr;
}

void TestShellCommand::programResults_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("input");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("out");
    QTest::addColumn<QString>("err");
    QTest::addColumn<QStringList>("log");
    const QString sh = QStringLiteral("/bin/sh"), c = QStringLiteral("-c"), no = QStringLiteral("untouched");
    const QString cantStart = QStringLiteral("can't start shell process");
    QTest::newRow("one line feed dropped") << QStringList{sh, c, "printf 'abc\\n\\n'"} << QString() << true
                                           << "abc\n" << "" << QStringList();
    QTest::newRow("error output apart") << QStringList{sh, c, "echo out; echo err >&2"} << QString() << true
                                        << "out" << "err" << QStringList();
    QTest::newRow("input on standard input") << QStringList{sh, c, "cat"} << QStringLiteral("h\u00e9llo\nw\u00f6rld")
                                             << true << QStringLiteral("h\u00e9llo\nw\u00f6rld") << "" << QStringList();
    QTest::newRow("standard input left open without input") << QStringList{HELPER, "stdin-state"} << QString()
                                                            << true << "open" << "" << QStringList();
    QTest::newRow("standard input closed after input") << QStringList{sh, c, "cat >/dev/null; " + HELPER + " stdin-state"}
                                                       << QStringLiteral("x") << true << "closed" << ""
                                                       << QStringList();
    QTest::newRow("exit code with error text")
        << QStringList{sh, c, "echo bad >&2; exit 3"} << QString() << false << "" << "bad"
        << QStringList{"can't execute: /bin/sh -c echo bad >&2; exit 3\nexit code 3\nbad"};
    QTest::newRow("exit code alone") << QStringList{HELPER, "exit", "4"} << QString() << false << "" << ""
                                     << QStringList{"can't execute: " + HELPER + " exit 4\nexit code 4"};
    QTest::newRow("crash") << QStringList{sh, c, "kill -KILL $$"} << QString() << false << "" << ""
                           << QStringList{"can't execute: /bin/sh -c kill -KILL $$\nabnormal exit"};
    QTest::newRow("large output on both channels")
        << QStringList{sh, c, "head -c 3000000 /dev/zero | tr '\\0' x & head -c 2000000 /dev/zero | tr '\\0' y >&2; wait"}
        << QString() << true << QString(3000000, QLatin1Char('x')) << QString(2000000, QLatin1Char('y'))
        << QStringList();
    QTest::newRow("missing program") << QStringList{"/nonexistent/zal-program"} << QString() << false << no << no
                                     << QStringList{cantStart};
    QTest::newRow("not executable") << QStringList{ZAL_TEST_SOURCE_DIR "/tst_shell.cpp"} << QString() << false << no
                                    << no << QStringList{cantStart};
    QTest::newRow("no program at all") << QStringList() << QString() << false << no << no << QStringList{cantStart};
}

void TestShellCommand::programResults()
{
    QFETCH(QStringList, args);
    QFETCH(QString, input);
    QSignalSpy selection(MainWindow::smgr, &AppStatusManager::selectionChangedSignal);
    const Result r = runProcess(args, input);
    QTEST(r.ok, "ok");
    QTEST(r.out, "out");
    QTEST(r.err, "err");
    QTEST(r.log, "log");
    QVERIFY(!r.aborted);
    QVERIFY(!_f->window->isGUILocked());
    QVERIFY(!_f->window->isDrawingLocked());
    // Views are told to refresh, also after a failure.
    QCOMPARE(selection.count(), 1);
    QCOMPARE(selection.at(0).at(1).value<SelectionMode_t>(), SelectionMode_t(2));
}

void TestShellCommand::inputLockedButPaintingWhileWaiting()
{
    // The child waits for a line that is sent only once the wait has painted.
    Fifo fifo;
    MainWindow *w = _f->window;
    auto *button = new QPushButton(QStringLiteral("probe"), w);
    button->setGeometry(10, 40, 80, 24);
    button->show();
    int clicks = 0;
    connect(button, &QPushButton::clicked, [&] { ++clicks; });
    bool guiLocked = false, drawingLocked = false;
    struct PaintProbe : QObject
    {
        std::function<void()> painted;
        bool eventFilter(QObject *, QEvent *e) override
        {
            if (e->type() == QEvent::Paint && painted)
                std::exchange(painted, nullptr)();
            return false;
        }
    } probe;
    QTimer::singleShot(0, w, [&] {
        guiLocked = w->isGUILocked();
        drawingLocked = w->isDrawingLocked();
        QTest::mouseClick(button, Qt::LeftButton);
        probe.painted = [&] { fifo.sendLater("painted\n"); };
        button->installEventFilter(&probe);
        button->update();
    });
    const Result r = runProcess({"/bin/sh", "-c", "read x < '" + fifo.path + "'; echo \"$x\""});
    QVERIFY(r.ok);
    QCOMPARE(r.out, QStringLiteral("painted"));
    QVERIFY(guiLocked && drawingLocked);
    QCOMPARE(clicks, 0);
    QVERIFY(!w->isGUILocked() && !w->isDrawingLocked());
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(clicks, 1);
}

void TestShellCommand::escapeAsksBeforeAborting_data()
{
    QTest::addColumn<QString>("child");
    QTest::addColumn<QList<int>>("answers");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("out");
    QTest::addColumn<bool>("aborted");
    QTest::addColumn<QStringList>("log");
    const QStringList abortLog{"shell command execution aborted"};
    // After Cancel the child is released by the test and ends by itself.
    QTest::newRow("cancel keeps waiting") << "reader" << QList<int>{1} << true << "go" << false << QStringList();
    QTest::newRow("ok terminates") << "sleeper" << QList<int>{0} << false << "" << true << abortLog;
    // The child ignores the terminate request; only the second abort ends it.
    QTest::newRow("second ok kills") << "stubborn" << QList<int>{0, 0} << false << "" << true << abortLog;
}

void TestShellCommand::escapeAsksBeforeAborting()
{
    QFETCH(QString, child);
    QFETCH(QList<int>, answers);
    MainWindow *w = _f->window;
    Fifo fifo;
    std::vector<GTools::DialogRequest> asked;
    int questions = 0;
    const auto previous = GTools::DialogSeam::setHandler([&](const GTools::DialogRequest &r) {
        asked.push_back(r);
        // Escape while the question shows asks nothing more.
        QTest::keyClick(w, Qt::Key_Escape);
        const int answer = answers.value(questions++);
        QTimer::singleShot(0, w, [&] {
            if (questions < answers.size())
                QTest::keyClick(w, Qt::Key_Escape);
            else if (child == QLatin1String("reader"))
                fifo.sendLater("go\n");
        });
        return answer;
    });
    QStringList args;
    if (child == QLatin1String("reader"))
        args = QStringList{"/bin/sh", "-c", "read x < '" + fifo.path + "'; echo \"$x\""};
    else if (child == QLatin1String("sleeper"))
        args = QStringList{HELPER, "sleep", "60"};
    else
        args = QStringList{HELPER, "ignore-term", fifo.path};
    QByteArray ready = "ready\n";
    QTimer::singleShot(0, w, [&] {
        if (child == QLatin1String("stubborn"))
            ready = fifo.receive();
        QTest::keyClick(w, Qt::Key_Escape);
    });
    const Result r = runProcess(args);
    GTools::DialogSeam::setHandler(previous);

    QCOMPARE(ready, QByteArray("ready\n"));
    QTEST(r.ok, "ok");
    QTEST(r.out, "out");
    QTEST(r.aborted, "aborted");
    QTEST(r.log, "log");
    QCOMPARE(int(asked.size()), answers.size());
    for (const GTools::DialogRequest &q : asked) {
        QCOMPARE(q.kind, QStringLiteral("okcancel"));
        QCOMPARE(q.type, 0);
        QCOMPARE(q.title, QStringLiteral("abort computation"));
        QCOMPARE(q.text, QStringLiteral("abort the computation?"));
    }
    QVERIFY(!w->isGUILocked() && !w->isDrawingLocked());
    QVERIFY(!QApplication::overrideCursor());
}

void TestShellCommand::shellCommands_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("out");
    QTest::addColumn<QStringList>("log"); // FILE stands for the command file
    QTest::newRow("percent kept, file holds the command") << "echo 100%; cat \"$0\"" << true
                                                          << "100%\necho 100%; cat \"$0\"" << QStringList();
    QTest::newRow("PYTHONHOME removed, the rest kept")
        << "echo \"${PYTHONHOME-unset} $PYTHONHOMEDIR\"" << true << "unset /kept" << QStringList();
    QTest::newRow("exit code") << "echo gone >&2; exit 3" << false << ""
                               << QStringList{"can't execute: /bin/sh FILE\nexit code 3\ngone"};
}

void TestShellCommand::shellCommands()
{
    QFETCH(QString, command);
    QFETCH(QStringList, log);
    qputenv("PYTHONHOME", "/python");
    qputenv("PYTHONHOMEDIR", "/kept");
    const Result r = runShell(command);
    qunsetenv("PYTHONHOME");
    qunsetenv("PYTHONHOMEDIR");
    QTEST(r.ok, "ok");
    QTEST(r.out, "out");
    log.replaceInStrings(QStringLiteral("FILE"), _f->tempDir() + QStringLiteral("/tmp_%1.sh").arg(OS::getPID()));
    QCOMPARE(r.log, log);
    QCOMPARE(commandFiles(_f->tempDir()), QStringList());
}

void TestShellCommand::commandFileNameCountsUpOnlyWhileTaken()
{
    const QString dir = _f->tempDir();
    const QString first = QStringLiteral("tmp_%1.sh").arg(OS::getPID());
    TestUtil::writeFile(dir + QLatin1Char('/') + first, "someone else's\n");
    Result r = runShell(QStringLiteral("echo \"$0\""));
    QCOMPARE(r.out, dir + QStringLiteral("/tmp_%1.sh").arg(OS::getPID() + 1));
    QCOMPARE(commandFiles(dir), QStringList{first});
    QVERIFY(QFile::remove(dir + QLatin1Char('/') + first));
    r = runShell(QStringLiteral("echo \"$0\""));
    QCOMPARE(r.out, dir + QLatin1Char('/') + first);
    QCOMPARE(commandFiles(dir), QStringList());
}

void TestShellCommand::unwritableTemporaryDirectoryFails()
{
    const QString missing = _f->env.user.filePath(QStringLiteral("missing"));
    MainWindow::cfg->getFileName(CFG_TEMP_DIR)->setValue(missing);
    const Result r = runShell(QStringLiteral("echo never"));
    QVERIFY(!r.ok);
    QCOMPARE(r.log, QStringList{"can't write shell command file: " + missing
                                + QStringLiteral("/tmp_%1.sh").arg(OS::getPID())});
    QVERIFY(!QFileInfo::exists(missing));
}

void TestShellCommand::runsWithoutAMainWindow()
{
    delete _f->window;
    _f->window = nullptr;
    const Result r = runProcess({"/bin/sh", "-c", "echo alone"});
    QVERIFY(r.ok);
    QCOMPARE(r.out, QStringLiteral("alone"));
}
