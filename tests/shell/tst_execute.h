#pragma once
#include <QObject>

// Command execution through the main window.
class TestExecution : public QObject
{
    Q_OBJECT
    struct Fixture;
    Fixture *_f = nullptr;

private slots:
    void init();
    void cleanup();
    void menuCommandRunsWithStatusLine();
    void semaphoreRefusesASecondMenuFunction();
    void synchronizedGroupRunsBesideTheMenuFunction();
    void selectCommandModes();
    void postedEventsRespectSensitivity();
    void scriptExecution();
    void shortScriptFormsShowTheErrorDialog();
    void macroRecording();
    void interactiveScriptRestoresTheOuterStatusLine();
    void callbacksRunWhenTheOutermostCommandEnds();
    void exitRequestedDuringACommandWaitsForItsEnd();
    void closeRunsTheExitCommand();
    void statusLineComposition();
    void drawingLockMustBeBalanced();
    void commandTracesUnderDebugging();
};
