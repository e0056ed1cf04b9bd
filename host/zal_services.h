#pragma once
#include "gapp_export.h"
#include <QString>

class QKeyEvent;

namespace Zal {

// The sounds that confirm remote-control actions, by index (0 ok ... 11 create
// element). The shell only tells which file belongs to which sound; playing
// them is the host's.
class GAPP_EXPORT Sound
{
public:
    static constexpr int COUNT = 12;
    static void setSoundFileName(int index, const QString &fileName);
    static QString getSoundFileName(int index);
};

// Defaults of the script token library: where projects and temporary files go.
class GAPP_EXPORT Token
{
public:
    static void UpdateDefaults(const QString &projectBase, const QString &tempDir);
    static QString getProjectBase();
    static QString getTempDir();
};

// The remote control's keys (measurement, undo, reference), and the handler
// that reacts to them while one exists. The handler registers itself.
class GAPP_EXPORT RemoteKeyboardHandler
{
public:
    RemoteKeyboardHandler();
    virtual ~RemoteKeyboardHandler();
    // True when the handler only wants keys pressed in the main window.
    virtual bool grabKeysOnMainWindowOnly() const { return true; }
    // Answers whether the key was taken.
    virtual bool keyEventFilter(QKeyEvent *event) = 0;

    static RemoteKeyboardHandler *instance() { return _instance; }
    static void setKeys(int measurementKey, int undoKey, int referenceKey);
    static int getMeasurementKey() { return _keys[0]; }
    static int getUndoKey() { return _keys[1]; }
    static int getReferenceKey() { return _keys[2]; }

private:
    static RemoteKeyboardHandler *_instance;
    static int _keys[3];
};

} // namespace Zal
