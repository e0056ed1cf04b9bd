// A second process for tests:
//   pid                 prints its process id
//   sleep N             waits N seconds
//   exit N              exits with N
//   cfg-temp-name FILE  prints its pid and the temporary name of a configuration save
//   cfg-save-loop FILE  saves a large configuration over and over, announcing each save
//   qt-messages         a Qt warning, then a fatal message, through the library's handler
//   ignore-term FIFO    ignores terminate requests, writes "ready" into FIFO, waits 60
//                       seconds for a kill, then prints "survived"
//   stdin-state         prints "open" while its standard input has neither data
//                       nor an end, else "closed"; never waits for it
#include "gapp_application.h"
#include "gapp_init.h"
#include "zal_cfg.h"
#include "zal_cfg_array.h"
#include "zal_os.h"
#include <QCoreApplication>
#include <QThread>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <poll.h>

using namespace Zal;

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const char *verb = argc >= 2 ? argv[1] : "";
    if (std::strcmp(verb, "pid") == 0) {
        std::printf("%d\n", OS::getPID());
        return 0;
    }
    if (argc >= 3 && std::strcmp(verb, "sleep") == 0) {
        QThread::sleep(std::strtoul(argv[2], nullptr, 10));
        return 0;
    }
    if (argc >= 3 && std::strcmp(verb, "exit") == 0)
        return std::atoi(argv[2]);
    if (argc >= 3 && std::strcmp(verb, "cfg-temp-name") == 0) {
        std::printf("%d %s\n", OS::getPID(),
                    GApp::ConfigFile::tempFileName(QString::fromLocal8Bit(argv[2])).toLocal8Bit().constData());
        return 0;
    }
    if (argc >= 3 && std::strcmp(verb, "cfg-save-loop") == 0) {
        std::unique_ptr<CfgNode> node(GApp::InitLibrary());
        node->getBool("UseLargeIcons")->setValue(true);
        auto *names = node->getArray<QString>(GApp::CFG_RECENT_FILE_NAMES);
        for (int i = 0; i < 20000; ++i)
            names->addValue(QStringLiteral("/some/long/path/to/a/measurement/file/number/%1.stl").arg(i));
        const QString file = QString::fromLocal8Bit(argv[2]);
        for (unsigned n = 1;; ++n) {
            std::printf("saving %u\n", n);
            std::fflush(stdout);
            if (!GApp::ConfigFile::save(node.get(), file))
                return 3;
        }
    }
    if (argc >= 3 && std::strcmp(verb, "ignore-term") == 0) {
        std::signal(SIGTERM, SIG_IGN);
        // Opening a FIFO blocks until the test reads it: the answer that
        // terminate requests are ignored from now on.
        if (std::FILE *fifo = std::fopen(argv[2], "w")) {
            std::fputs("ready\n", fifo);
            std::fclose(fifo);
        }
        QThread::sleep(60);
        std::printf("survived\n");
        return 0;
    }
    if (std::strcmp(verb, "stdin-state") == 0) {
        pollfd in{0, POLLIN, 0};
        const int ready = ::poll(&in, 1, 0);
        std::printf("%s\n", ready == 0 ? "open" : "closed");
        return 0;
    }
    if (std::strcmp(verb, "qt-messages") == 0) {
        qInstallMessageHandler(GApp::qtMessageHandler);
        qWarning("careful");
        qFatal("boom");
    }
    std::fprintf(stderr, "usage: zal_test_helper pid|sleep N|exit N|cfg-temp-name F|cfg-save-loop F|qt-messages|ignore-term FIFO|stdin-state\n");
    return 2;
}
