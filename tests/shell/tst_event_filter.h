#pragma once
#include <QObject>

// The application event filter of the main window: GUI lock, Escape, F1,
// shortcut keys, event traces.
class TestEventFilter : public QObject
{
    Q_OBJECT
    struct Fixture;
    Fixture *_f = nullptr;

private slots:
    void init();
    void cleanup();
    void lockRule_data();
    void lockRule();
    void escape();
    void f1RequestsHelp();
    void shortcutDispatch_data();
    void shortcutDispatch();
    void eventTypeNames_data();
    void eventTypeNames();
    void eventTrace();
};
