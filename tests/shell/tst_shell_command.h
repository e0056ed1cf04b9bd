#pragma once
#include <QObject>

// External programs and shell commands run from the GUI thread.
class TestShellCommand : public QObject
{
    Q_OBJECT
    struct Fixture;
    Fixture *_f = nullptr;

private slots:
    void init();
    void cleanup();
    void programResults_data();
    void programResults();
    void inputLockedButPaintingWhileWaiting();
    void escapeAsksBeforeAborting_data();
    void escapeAsksBeforeAborting();
    void shellCommands_data();
    void shellCommands();
    void commandFileNameCountsUpOnlyWhileTaken();
    void unwritableTemporaryDirectoryFails();
    void runsWithoutAMainWindow();
};
