#pragma once
// The demo's two application types, measuring and inspection. Both work on
// the one document; each names its own main menu and standard view.
#include "gapp_status_data.h"

namespace Demo {

class DemoStatus : public Zal::GApp::StatusData
{
public:
    DemoStatus(unsigned int mode, const QString &name);

    QString getLocalModeName() override { return _name; }
    QString getMainMenuName() override { return _name + QStringLiteral("_menu"); }
    bool isAppModeChangePossible(unsigned int) override { return true; }
    bool canExitProgram() override { return true; }
    void exitProgram() override {}
    void commitData() override {}
    bool isEmpty() override;
    std::vector<const char *> getAdditionalSelectionNames() override { return {}; }
    std::vector<QString> getSelectedData(const char *) override { return {}; }
    std::vector<QString> getAllData() override;
    bool isDataModified(const QString &) const override;
    bool getSelectedDataName(QString *name, bool *modified) const override;
    std::vector<QString> getAllFileNameExtensions() override { return {QStringLiteral(".pts")}; }

private:
    QString _name;
};

} // namespace Demo
