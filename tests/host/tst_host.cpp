#include <QtTest>

class TestHost : public QObject
{
    Q_OBJECT
private slots:
    void placeholder() { QVERIFY(true); }
};

QTEST_MAIN(TestHost)
#include "tst_host.moc"
