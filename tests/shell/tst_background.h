#pragma once
#include <QObject>

// Background execution, its abort question and the progress display.
class TestBackground : public QObject
{
    Q_OBJECT
    struct Fixture;
    Fixture *_f = nullptr;

private slots:
    void init();
    void cleanup();
    void finishedRunReturnsTrueAndRestoresState_data();
    void finishedRunReturnsTrueAndRestoresState();
    void workerDoneBeforeTheFirstTick();
    void abortQuestion_data();
    void abortQuestion();
    void progressEventsMoveTheBar_data();
    void progressEventsMoveTheBar();
    void progressEventShowsOnlyWhileAllowed_data();
    void progressEventShowsOnlyWhileAllowed();
    void changesWaitInOneEvent();
    void nestedRunRestoresTheOuterRun();
    void failureInTheLoopRestoresStateAndThrows();
    void timedMessageLeavesThePreMessage();
};
