#pragma once
#include "gapp_export.h"
#include "zal_geometry.h"
#include <QMetaType>
#include <QString>
#include <vector>

namespace Zal {
class ErrorLog;

namespace GApp {

// What happened to a selection; travels with the selection signals.
enum SelectionMode_t {
    SELECTION_CHANGED = 0, // the selection was replaced
    SELECTION_ADDED = 1,   // elements were added to it
    SELECTION_REMOVED = 2, // elements were taken out of it
    SELECTION_CLEARED = 3  // nothing is selected any more
};

// How save-as treats the saved data's name.
enum RenameType_t {
    RENAME_NONE = 0, // the data keeps its name
    RENAME_DATA = 1, // the data takes the file's name
    RENAME_COPY = 2  // the file is a copy; the data stays as it was
};

// One application type's answers about its data. The host derives one class
// per type and registers one object per type with the status manager, which
// owns it from then on. The library never looks into the data; it only asks
// through these operations, from the GUI thread.
class GAPP_EXPORT StatusData
{
public:
    enum StageActive_t {
        STAGE_INACTIVE = 0,
        STAGE_ACTIVE = 1,
        STAGE_UNKNOWN = 2 // this type has no answer for the stage
    };
    enum StageLoopStage_t {
        STAGE_LOOP_ALL = 0,
        STAGE_LOOP_ACTIVE = 1,
        STAGE_LOOP_SELECTED = 2
    };
    enum ExplorerPosition_t {
        EXPLORER_BEFORE = 0,
        EXPLORER_AT = 1,
        EXPLORER_AFTER = 2
    };

    static constexpr int EXPLORER_INDEX_UNUSED = 2147483647;
    static constexpr int STAGE_UNUSED = -1;
    static constexpr const char *DEFAULT_SELECTION = "";

    StatusData(unsigned int localMode, const QString &standardView);

    virtual ~StatusData();
    virtual QString getLocalModeName();
    virtual QString getMainMenuName() = 0;
    virtual bool isAppModeChangePossible(unsigned int newMode) = 0;
    virtual void beforeModeChange(unsigned int newMode);
    virtual void afterModeChange(unsigned int oldMode);
    virtual bool canExitProgram() = 0;
    virtual void exitProgram() = 0;
    virtual void commitData() = 0;
    virtual bool cleanupInconsistentState();
    virtual bool isEmpty() = 0;
    virtual std::vector<const char *> getAdditionalSelectionNames() = 0;
    virtual std::vector<QString> getSelectedData(const char *selection) = 0;
    virtual std::vector<QString> getAllData() = 0;
    virtual bool isDataModified(const QString &name) const = 0;
    virtual std::vector<QString> getAllFileNameExtensions();
    virtual bool getSelectedDataName(QString *name, bool *modified) const;
    virtual QString getFileName(const QString &name);
    virtual bool isFileNameValid(const QString &fileName) const;
    virtual QString getFileNameExtension(const std::vector<QString> &names);
    virtual QString getFileNameExtension(const QString &name);
    virtual bool canOpenFile(const std::vector<char> &firstBytes);
    virtual bool canOpenImage() const;
    virtual bool openFile(const QString &fileName, QString *second, QString *errorCode,
                          ErrorLog *log);
    virtual bool isSaveSensitive() const;
    virtual bool saveFile(const QString &name, const QString &fileName, QString *errorCode,
                          ErrorLog *log);
    virtual bool isSaveAsSensitive() const;
    virtual bool isExportC3DSensitive() const;
    virtual bool isSaveProjectAsSensitive() const;
    virtual bool saveFileAs(const std::vector<QString> &names, const QString &fileName,
                            RenameType_t rename, QString *errorCode, ErrorLog *log);
    virtual bool saveFileAsRecent(const std::vector<QString> &names, const QString &fileName,
                                  RenameType_t rename, QString *recentName, QString *errorCode,
                                  ErrorLog *log);
    virtual bool isCloseSensitive() const;
    virtual bool closeData(const std::vector<QString> &names, QString *errorCode, ErrorLog *log);
    virtual bool isCopyToClipboardSensitive() const;
    virtual bool copyToClipboard(const std::vector<QString> &names,
                                 const std::vector<QString> &formats, QString *errorCode,
                                 ErrorLog *log) const;
    virtual bool canPasteFromClipboard(const std::vector<char> &firstBytes);
    virtual bool pasteFromClipboard(const std::vector<QString> &files,
                                    const std::vector<QString> &second, QString *third,
                                    QString *errorCode, ErrorLog *log);
    virtual StageActive_t isStageActive(const QString &stage);
    virtual std::vector<QString> getStageLoopStages(const QString &name, StageLoopStage_t stage);
    virtual StageIdentifier getActualStageIdentifier();
    virtual std::vector<int> getStageNumbers(QString name, ExplorerPosition_t position, int index);

    unsigned int getLocalMode() const { return _local_mode; }
    void setLocalMode(unsigned int mode) { _local_mode = mode; }
    bool isReadOnly() const { return _read_only; }
    void setReadOnly(bool readOnly) { _read_only = readOnly; }
    const QString &getStandardView() const { return _standard_view; }
    void setStandardView(const QString &view) { _standard_view = view; }

    // Whether the file's first bytes, read as Latin-1, begin with `magic`.
    bool checkMagicHeader(const std::vector<char> &firstBytes, const QString &magic) const;

private:
    unsigned int _local_mode;
    bool _read_only = false;
    QString _standard_view;
};

// An item addressed by number, by name or by a tuple of numbers.
class GAPP_EXPORT ItemIndex
{
public:
    enum Type_t {
        BY_INDEX = 0,
        BY_NAME = 1,
        BY_TUPLE = 2
    };

    explicit ItemIndex(unsigned int index);
    explicit ItemIndex(const QString &name);
    explicit ItemIndex(const std::vector<int> &tuple);

    Type_t getType() const { return _type; }
    unsigned int getIndex() const { return _index; }
    const QString &getName() const { return _name; }
    const std::vector<int> &getTuple() const { return _tuple; }

private:
    Type_t _type;
    unsigned int _index = 0;
    QString _name;
    std::vector<int> _tuple;
};

// Base of the host's extra data on a picked point.
class GAPP_EXPORT ObjectPointAdditionalData
{
public:
    virtual ~ObjectPointAdditionalData();
};

// A point picked on an object, as sent with the point-selection signal. The
// additional data is not owned: the sender keeps it alive while the signal is
// delivered, and copies share it.
struct GAPP_EXPORT ObjectPointDescriptor
{
    enum Type_t {
        NO_ADDITIONAL_DATA = 0,
        ADDITIONAL_MESH_DATA = 1,
        ADDITIONAL_CAD_DATA = 2
    };

    ObjectPointDescriptor() = default;
    ObjectPointDescriptor(const BaPoint3d<double> &point, const QString &name,
                          const BaVec3d<double> &normal, bool flag);

    void setAdditionalData(Type_t type, ObjectPointAdditionalData *data);

    Type_t additional_type = NO_ADDITIONAL_DATA;
    BaPoint3d<double> point;
    QString name;
    BaVec3d<double> normal;
    bool flag = false;
    ObjectPointAdditionalData *additional_data = nullptr;
};

// Something besides the application types that must agree before the
// program exits. It registers with the status manager and unregisters before
// it dies.
class GAPP_EXPORT ExitNotifier
{
public:
    virtual ~ExitNotifier();
    virtual bool canExitProgram() = 0;
    virtual void exitProgram() = 0;
};

} // namespace GApp
} // namespace Zal

Q_DECLARE_METATYPE(Zal::GApp::SelectionMode_t)
Q_DECLARE_METATYPE(Zal::GApp::ObjectPointDescriptor)
Q_DECLARE_METATYPE(std::vector<Zal::GApp::ObjectPointDescriptor>)
