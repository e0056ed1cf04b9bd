#pragma once
#include "gapp_export.h"
#include <QObject>
#include <QString>
#include <QWidget>
#include <set>
#include <vector>

class QAction;
class QToolBar;
class QToolButton;

namespace Zal {
namespace GApp {
class Command;

// For host commands that put their own widgets into a toolbar: groups the
// widgets by mode and shows those of the current mode (mode -1: every mode),
// enables them together, keeps the active-command and menu-semaphore
// bookkeeping around a run started from them, and passes the main window's
// and status manager's change signals on to the subclass. A child of its
// toolbar; the actions it refers to belong to that toolbar. GUI thread only.
class GAPP_EXPORT ToolBarWidgetManager : public QObject
{
    Q_OBJECT
public:
    ToolBarWidgetManager(Command *command, QToolBar *toolbar, unsigned int mode_count);
    ~ToolBarWidgetManager() override;

    void addWidget(QWidget *widget, int mode);
    void addSeparator(int mode);
    // A tool button whose click selects the command in select-command mode.
    virtual QToolButton *addToolButton(const QString &icon_name, const QString &tooltip,
                                       bool checkable, int mode);
    virtual void updateSensitivity() = 0;
    virtual void saveConfig() = 0;
    virtual void selectionChanged() = 0;
    virtual void dataChanged() = 0;

    void switchMode(unsigned int mode);
    unsigned int getMode() const { return _current_mode; }
    void setToolBarEnabled(bool enabled);
    bool isToolBarEnabled() const { return _toolbar_enabled; }

    // False while another menu function holds the semaphore this command needs.
    bool isCommandExecutionAllowed() const;
    // Paired around a run of the command from the manager's widgets.
    void beginCommandExecution();
    void endCommandExecution();
    bool isCommandExecuting() const { return _command_executing; }

private slots:
    void handleUpdateSensitivity();
    void handleSaveConfig();
    void handleSelectionChanged();
    void handleDataChanged();
    void handleSelectCommand();

private:
    QAction *actionForWidget(QWidget *widget);
    void forgetAction(QObject *action);

    QToolBar *_toolbar;
    Command *_command;
    std::vector<QAction *> _actions;
    unsigned int _current_mode = 0;
    unsigned int _mode_count;
    std::vector<std::set<QAction *>> _mode_sets;
    bool _toolbar_enabled = true;
    bool _command_executing = false;
};

// A separator that a ToolBarWidgetManager puts between its widgets; unlike
// the toolbar's own separators it can be shown per mode.
class GAPP_EXPORT ToolBarSeparator : public QWidget
{
    Q_OBJECT
public:
    explicit ToolBarSeparator(QWidget *parent);
    ~ToolBarSeparator() override;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *e) override;

private:
    bool isHorizontal() const;
};

} // namespace GApp
} // namespace Zal
