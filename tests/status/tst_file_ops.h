#pragma once
#include <QObject>

// The status manager's data and file operations: forwarding to the active
// type, addressing one type, combining all types, and opening or pasting
// files by their first bytes.
class TestFileOps : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void forwardsToTheActiveType_data();
    void forwardsToTheActiveType();
    void unregisteredTypeThrowsNamingTheOperation_data();
    void unregisteredTypeThrowsNamingTheOperation();
    void answersWithoutActiveStatusData();
    void emptyOnlyWhenEveryTypeIsEmpty();
    void extensionsOnceInOrderOfFirstAppearance();
    void stageActiveAsksTheActiveTypeFirst_data();
    void stageActiveAsksTheActiveTypeFirst();
    void stageLoopStagesFallBackToTheFirstNonEmptyList();

    void readFileContentsReadsAtMostTheFirstBlock_data();
    void readFileContentsReadsAtMostTheFirstBlock();
    void unreadableFilesAreReportedNotRead_data();
    void unreadableFilesAreReportedNotRead();
    void openChoosesTheTypeThatReadsTheFile_data();
    void openChoosesTheTypeThatReadsTheFile();
    void openTellsEveryTypeBeforeTheChosenOneOpens();
    void openFailures_data();
    void openFailures();
    void imagesGoToTypesThatOpenImages();
    void fileTypeIsAnsweredWithoutModeChange();
    void pasteChoosesByTheFirstFile();
    void pasteRefusedWithoutLogLine();
    void pasteWithoutFilesIsAProgrammingError();

    void imageSignatures_data();
    void imageSignatures();
};
