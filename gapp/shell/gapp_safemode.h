#pragma once
#include "gapp_export.h"
#include "zal_get_selection.h"
#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>
#include <vector>

namespace Zal {
namespace GApp {

// Callbacks that reset risky settings when the application starts with
// "-safemode". They run once, in registration order, after the configuration
// is loaded and before it is applied.
class GAPP_EXPORT Safemode
{
public:
    static void registerCallback(void (*callback)());
    static void restoreSafeCfgItems();

private:
    static std::vector<void (*)()> _callbacks;
};

// Saves the whole session when the desktop session ends with unsaved data.
// At most one exists; the main window deletes it when it is destroyed.
class GAPP_EXPORT SaveSessionHandler
{
public:
    SaveSessionHandler();
    virtual ~SaveSessionHandler();
    virtual bool canSaveSession() = 0;
    virtual bool saveSession() = 0;

    static SaveSessionHandler *ssh;
};

// Resolves placeholders in parameter strings before commands see them.
class GAPP_EXPORT ResolveInterface
{
public:
    ResolveInterface();
    virtual ~ResolveInterface();
    virtual QString resolve(const QString &params) = 0;

    static ResolveInterface *getInstance() { return _instance; }
    static bool getResolveItems() { return _resolve_items; }
    static void setResolveItems(bool on) { _resolve_items = on; }
    // The resolved text, or the text itself when nothing is registered or
    // resolving is switched off.
    static QString resolveParameterString(const QString &params);

private:
    static ResolveInterface *_instance;
    static bool _resolve_items;
};

// Handles files dropped on the main window. While none exists, the window
// accepts no drags.
class GAPP_EXPORT DropInterface : public QObject
{
    Q_OBJECT
public:
    explicit DropInterface(QObject *parent = nullptr);
    ~DropInterface() override;
    virtual void handleDrop(QList<QUrl> &urls) = 0;

    static DropInterface *instance() { return _instance; }

private:
    static DropInterface *_instance;
};

// Answers the parser library's selection question from the status manager.
class GAPP_EXPORT GAppGetSelectionInterface : public GetSelectionInterface
{
public:
    std::vector<QString> getSelectedData(const char *typeName) override;
};

} // namespace GApp
} // namespace Zal
