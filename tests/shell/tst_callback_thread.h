#pragma once
#include <QObject>

// GUI callbacks from worker threads: the hand-over and its one-at-a-time rule.
class TestCallbackThread : public QObject
{
    Q_OBJECT
    struct Fixture;
    Fixture *_f = nullptr;

private slots:
    void init();
    void cleanup();
    void callbacksRunInTheGuiThreadBeforeEachCallReturns();
    void ofTwoOverlappingHandOversOneThrows();
    void refusalsAndFailuresLeaveTheNextHandOverWorking_data();
    void refusalsAndFailuresLeaveTheNextHandOverWorking();
};
