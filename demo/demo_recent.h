#pragma once
#include "gapp_menu_provider.h"
#include <QStringList>

namespace Demo {

// The "recent_files" special menu: the files opened last, newest first.
// Choosing one opens it again through file.open.
class RecentFilesProvider : public Zal::GApp::SpecialMenuProvider
{
    Q_OBJECT
public:
    explicit RecentFilesProvider(QObject *parent = nullptr) : SpecialMenuProvider(parent) {}
    static RecentFilesProvider *instance();

    void addFile(const QString &fileName);
    const QStringList &files() const { return _files; }
    bool isVisible() const override { return !_files.isEmpty(); }
    QString getMenuTitle() const override;
    void fillMenu(Zal::GApp::Menu *menu) override;

private:
    QStringList _files;
};

} // namespace Demo
