#pragma once
#include <QObject>

// The application event filter of the main window: GUI lock, Escape, F1,
// shortcut keys, posted events, drag and drop, event traces.
class TestEventFilter : public QObject
{
    Q_OBJECT
    struct Fixture;
    Fixture *_f = nullptr;

private slots:
    void init();
    void cleanup();
    void startUpFillsTheDefaultMap();
    void lockRule_data();
    void lockRule();
    void closeIsIgnoredWhileLocked();
    void lockMisuse();
    void escape();
    void cancelableBackgroundTurnsEscapeIntoAbort();
    void f1RequestsHelp();
    void shortcutDispatch_data();
    void shortcutDispatch();
    void maximiseNoticeWaitsForTheMenuFunction();
    void postedEvents();
    void dragAndDrop();
    void eventTypeNames_data();
    void eventTypeNames();
    void eventTrace();
};
