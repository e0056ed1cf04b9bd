#pragma once
#include "gapp_export.h"
#include "zal_cfg_file.h"
#include <QPointer>
#include <QString>
#include <QToolBar>
#include <map>
#include <vector>

class QDomDocument;
class QDomElement;

namespace Zal {
class ErrorLog;
namespace IO {
class InStream;
class OutStream;
} // namespace IO

namespace GApp {

// The toolbar widget of the library: refreshes the command actions it shows
// each time it becomes visible, since hidden actions are not kept up to date.
class GAPP_EXPORT ToolBar : public QToolBar
{
    Q_OBJECT
public:
    explicit ToolBar(QWidget *parent = nullptr);
    ~ToolBar() override;

protected:
    void showEvent(QShowEvent *e) override;
};

// The definition of one toolbar from the layout file: title, start place,
// entries and the entries to return to; and, while the toolbar is on screen,
// its widget. The widget is a child of the main window and is deleted only
// through deleteWidget, createWidget and ToolBarContainer::deleteWidgets.
// GUI thread only.
class GAPP_EXPORT ToolBarData
{
public:
    struct ToolBarItem
    {
        enum Kind : unsigned int { SEPARATOR = 0, COMMAND = 1 };

        unsigned int kind = SEPARATOR;
        // 0 for the layout file, else the level of the toolbar file it came from.
        Cfg::Level level = 0;
        // Text instead of an icon; a group as a combo box.
        bool show_name = false;
        QString command;
    };

    ToolBarData(const QString &name, const QString &title, Qt::ToolBarArea area, bool new_row,
                bool shown);
    ~ToolBarData();
    ToolBarData(const ToolBarData &other);
    ToolBarData &operator=(const ToolBarData &other);

    const QString &getName() const { return _name; }
    const QString &getTranslatedName() const { return _title; }
    Qt::ToolBarArea getDockArea() const { return _dock_area; }
    QToolBar *widget() const { return _widget; }
    bool widgetExists() const { return !_widget.isNull(); }

    const std::vector<ToolBarItem> &getItems() const { return _items; }
    const std::vector<ToolBarItem> &getDefaultItems() const { return _default_items; }
    void setCommands(const std::vector<ToolBarItem> &items);
    void setAsDefault();
    void restoreDefault();
    // Renames the user's own entries (level 2) only.
    void renameCommand(const QString &old_name, const QString &new_name);

    void fillToolBar(const QDomElement &element);
    // Creates the widget before `before` (or at the end of its dock area), or
    // with keep_widget empties an existing widget in place and refills it.
    void createWidget(QToolBar *before, bool keep_widget);
    void moveWidget(QToolBar *before);
    void deleteWidget();

    // The user's entries as one block of the toolbar file.
    void save(IO::OutStream *stream) const;
    void load(IO::InStream *stream, Cfg::Level level);

private:
    friend class ToolBarContainer;

    QString _name;
    QString _title;
    Qt::ToolBarArea _dock_area;
    bool _new_row;
    bool _shown;
    std::vector<ToolBarItem> _items;
    std::vector<ToolBarItem> _default_items;
    QPointer<QToolBar> _widget;
};

// All toolbar definitions of the layout file by name, and the widgets of
// those the current main menu shows: shared toolbars keep their widgets when
// the main menu changes. The toolbar "custom_tb" is the user's own; its extra
// entries live in the toolbar file. All members static; GUI thread only.
class GAPP_EXPORT ToolBarContainer
{
public:
    static const char *const FILE_TYPE;
    static const char *const CUSTOM_TOOLBAR;

    static void loadInitialDefault(QDomDocument *doc);
    static ToolBarData *getToolBar(const QString &name);
    static ToolBarData *getCustomToolBar();
    // Places the toolbars of a main menu, each before its successor.
    static void createWidgets(const std::vector<QString> &names,
                              const std::vector<QString> &successors);
    static void deleteWidgets(const std::vector<QString> &kept);
    static void updateCustomToolBar();
    static void updateToolBars();
    static void renameCommand(const QString &old_name, const QString &new_name);
    static void deleteAllToolBars();

    // The toolbar file: every level on load, the user's level on save.
    static bool load(ErrorLog *log);
    static bool save(ErrorLog *log);

private:
    static bool load(const QString &file, Cfg::Level level, ErrorLog *log);
    static bool save(const QString &file, ErrorLog *log);

    static std::map<QString, ToolBarData *> _toolbars;
};

} // namespace GApp
} // namespace Zal
