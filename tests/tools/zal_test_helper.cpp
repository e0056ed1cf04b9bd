// A second process for tests: "pid" prints its process id; "sleep N" waits N
// seconds (for kill tests); "exit N" exits with N. Further verbs join with the
// features that need them.
#include "zal_os.h"
#include <QCoreApplication>
#include <QThread>
#include <cstdio>
#include <cstring>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc >= 2 && std::strcmp(argv[1], "pid") == 0) {
        std::printf("%d\n", Zal::OS::getPID());
        return 0;
    }
    if (argc >= 3 && std::strcmp(argv[1], "sleep") == 0) {
        QThread::sleep(std::strtoul(argv[2], nullptr, 10));
        return 0;
    }
    if (argc >= 3 && std::strcmp(argv[1], "exit") == 0)
        return std::atoi(argv[2]);
    std::fprintf(stderr, "usage: zal_test_helper pid|sleep N|exit N\n");
    return 2;
}
