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

// Runs the program `args`, or with `shell` the shell command args[0].
Result runProcess(const QStringList &args, const QString &input = QString(), bool shell = false)
{
    Result r;
    ErrorLog log;
    const std::vector<QString> argv(args.begin(), args.end());
    r.ok = shell ? ExecuteShellCommand(args.value(0), input, &r.out, &r.err, &r.aborted, &log)
                 : ExecuteProcess(argv, input, &r.out, &r.err, &r.aborted, &log);
    r.log = log.getEntries();
    return r;
}

Result runShell(const QString &command) { return runProcess({command}, QString(), true); }

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

QStringList commandFiles(const QString &dir) { return QDir(dir).entryList({QStringLiteral("tmp_*")}, QDir::Files); }

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
    // The name the command file gets when the `taken` names before it exist.
    QString commandFile(int taken = 0) const
    {
        return tempDir() + QStringLiteral("/tmp_%1.sh").arg(OS::getPID() + taken);
    }
};

void TestShellCommand::init() { _f = new Fixture; }
void TestShellCommand::cleanup() { delete std::exchange(_f, nullptr); }

void TestShellCommand::programResults_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("input");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("out");
    QTest::addColumn<QString>("err");
    QTest::addColumn<QStringList>("log");
    const auto row = [](const char *name, const QStringList &args, bool ok, const QString &out, const QString &err,
                        const QStringList &log = {}, const QString &input = {}) {
        QTest::newRow(name) << args << input << ok << out << err << log;
    };
    const QString sh = QStringLiteral("/bin/sh"), c = QStringLiteral("-c"), no = QStringLiteral("untouched");
    const QString cantStart = QStringLiteral("can't start shell process");
    const QString text = QStringLiteral("h\u00e9llo\nw\u00f6rld");
    row("one line feed dropped", {sh, c, "printf 'abc\\n\\n'"}, true, "abc\n", "");
    row("error output apart", {sh, c, "echo out; echo err >&2"}, true, "out", "err");
    row("input on standard input", {sh, c, "cat"}, true, text, "", {}, text);
    row("standard input left open without input", {HELPER, "stdin-state"}, true, "open", "");
    row("standard input closed after input", {sh, c, "cat >/dev/null; " + HELPER + " stdin-state"}, true, "closed", "",
        {}, "x");
    row("exit code with error text", {sh, c, "echo bad >&2; exit 3"}, false, "", "bad",
        {"can't execute: /bin/sh -c echo bad >&2; exit 3\nexit code 3\nbad"});
    row("exit code alone", {HELPER, "exit", "4"}, false, "", "", {"can't execute: " + HELPER + " exit 4\nexit code 4"});
    row("crash", {sh, c, "kill -KILL $$"}, false, "", "", {"can't execute: /bin/sh -c kill -KILL $$\nabnormal exit"});
    row("large output on both channels",
        {sh, c, "head -c 3000000 /dev/zero | tr '\\0' x & head -c 2000000 /dev/zero | tr '\\0' y >&2; wait"}, true,
        QString(3000000, QLatin1Char('x')), QString(2000000, QLatin1Char('y')));
    row("missing program", {"/nonexistent/zal-program"}, false, no, no, {cantStart});
    row("not executable", {ZAL_TEST_SOURCE_DIR "/tst_shell.cpp"}, false, no, no, {cantStart});
    row("no program at all", {}, false, no, no, {cantStart});
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
    QVERIFY(!_f->window->isGUILocked() && !_f->window->isDrawingLocked());
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
    bool locked = false;
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
        locked = w->isGUILocked() && w->isDrawingLocked();
        QTest::mouseClick(button, Qt::LeftButton);
        probe.painted = [&] { fifo.sendLater("painted\n"); };
        button->installEventFilter(&probe);
        button->update();
    });
    const Result r = runProcess({"/bin/sh", "-c", "read x < '" + fifo.path + "'; echo \"$x\""});
    QVERIFY(r.ok);
    QCOMPARE(r.out, QStringLiteral("painted"));
    QVERIFY(locked);
    QCOMPARE(clicks, 0);
    QVERIFY(!w->isGUILocked() && !w->isDrawingLocked());
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(clicks, 1);
}

void TestShellCommand::escapeAsksBeforeAborting_data()
{
    QTest::addColumn<QString>("child");
    QTest::addColumn<QStringList>("args"); // FIFO stands for the handshake FIFO
    QTest::addColumn<QList<int>>("answers");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("out");
    QTest::addColumn<bool>("aborted");
    QTest::addColumn<QStringList>("log");
    const QStringList abortLog{"shell command execution aborted"};
    // After Cancel the child is released by the test and ends by itself.
    QTest::newRow("cancel keeps waiting") << "reader" << QStringList{"/bin/sh", "-c", "read x < 'FIFO'; echo \"$x\""}
                                          << QList<int>{1} << true << "go" << false << QStringList();
    QTest::newRow("ok terminates") << "sleeper" << QStringList{HELPER, "sleep", "60"} << QList<int>{0} << false << ""
                                   << true << abortLog;
    // The child ignores the terminate request; only the second abort ends it.
    QTest::newRow("second ok kills") << "stubborn" << QStringList{HELPER, "ignore-term", "FIFO"} << QList<int>{0, 0}
                                     << false << "" << true << abortLog;
}

void TestShellCommand::escapeAsksBeforeAborting()
{
    QFETCH(QString, child);
    QFETCH(QStringList, args);
    QFETCH(QList<int>, answers);
    MainWindow *w = _f->window;
    Fifo fifo;
    args.replaceInStrings(QStringLiteral("FIFO"), fifo.path);
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
    for (const GTools::DialogRequest &q : asked)
        QCOMPARE(QStringList({q.kind, QString::number(q.type), q.title, q.text}),
                 QStringList({"okcancel", "0", "abort computation", "abort the computation?"}));
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
    QCOMPARE(r.log, log.replaceInStrings(QStringLiteral("FILE"), _f->commandFile()));
    QCOMPARE(commandFiles(_f->tempDir()), QStringList());
}

void TestShellCommand::commandFileNameCountsUpOnlyWhileTaken()
{
    const QString first = _f->commandFile();
    TestUtil::writeFile(first, "someone else's\n");
    QCOMPARE(runShell(QStringLiteral("echo \"$0\"")).out, _f->commandFile(1));
    QCOMPARE(commandFiles(_f->tempDir()), QStringList{QFileInfo(first).fileName()});
    QVERIFY(QFile::remove(first));
    QCOMPARE(runShell(QStringLiteral("echo \"$0\"")).out, first);
    QCOMPARE(commandFiles(_f->tempDir()), QStringList());
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
