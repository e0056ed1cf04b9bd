#pragma once
// The demo's commands and application types: an inspection application with
// a measuring mode and an inspection mode.
#include "gapp_command.h"
#include "gapp_status_data.h"
#include <QStringList>

namespace Demo {

// The part of the application state that the demo's commands change.
struct Document
{
    QString fileName;
    bool modified = false;
    bool grid = false;
    int undoSteps = 0;
    int redoSteps = 0;
};
Document &document();

// Creates the demo's commands; they live until the registry deletes them.
void createCommands();

// One application type of the demo. Every mode change it is told of is noted
// in the journal, so the demo can show that all types hear of it.
class DemoStatus : public Zal::GApp::StatusData
{
public:
    DemoStatus(unsigned int mode, const QString &name, QStringList *journal);

    QString getLocalModeName() override { return _name; }
    QString getMainMenuName() override { return _name + QStringLiteral("_menu"); }
    bool isAppModeChangePossible(unsigned int) override { return true; }
    void beforeModeChange(unsigned int newMode) override;
    void afterModeChange(unsigned int oldMode) override;
    bool canExitProgram() override { return !document().modified; }
    void exitProgram() override {}
    void commitData() override {}
    bool isEmpty() override { return document().fileName.isEmpty(); }
    std::vector<const char *> getAdditionalSelectionNames() override { return {}; }
    std::vector<QString> getSelectedData(const char *) override { return {}; }
    std::vector<QString> getAllData() override;
    bool isDataModified(const QString &) const override { return document().modified; }
    std::vector<QString> getAllFileNameExtensions() override { return {QStringLiteral(".insp")}; }
    bool canOpenFile(const std::vector<char> &firstBytes) override
    {
        return checkMagicHeader(firstBytes, QStringLiteral("INSP"));
    }

private:
    QString _name;
    QStringList *_journal;
};

} // namespace Demo
