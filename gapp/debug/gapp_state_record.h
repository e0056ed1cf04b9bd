#pragma once
#include "gapp_export.h"
#include "zal_geometry.h"
#include "zal_script_object.h"
#include <QString>
#include <QStringList>
#include <map>
#include <utility>
#include <vector>

namespace Zal {
namespace GApp {

// One script object as it was when recorded: its name, stage and tokens with
// their values. Selection and colour tokens are left out, so that changing
// them never counts as a difference.
class GAPP_EXPORT ObjectStateRecord
{
public:
    using Token = std::pair<QString, Value>;

    explicit ObjectStateRecord(ScriptObject *object);

    const QString &getName() const { return _name; }
    const StageIdentifier &getStageId() const { return _stage_id; }
    const std::vector<Token> &getTokens() const { return _tokens; }

    // Appends the differences of `other` to this record, as seen after running
    // `command`, to `differences`; true when there were none.
    bool compare(const QString &command, const ObjectStateRecord &other,
                 QStringList *differences) const;

private:
    void storeTokens(ScriptObject *object);

    QString _name;
    StageIdentifier _stage_id;
    std::vector<Token> _tokens;
};

// The script-visible state of the whole application under a name, one
// object record per script item name. Lives for one checked command.
class GAPP_EXPORT ApplicationStateRecord
{
public:
    explicit ApplicationStateRecord(const QString &name);

    // (Re)captures every object below the application script object.
    void storeCurrentState();

    const QString &getName() const { return _name; }
    const std::map<QString, ObjectStateRecord> &getObjects() const { return _objects; }

    // Appends the differences of `other` to this record, as seen after running
    // `command`, to `differences`; true when there were none.
    bool compare(const QString &command, const ApplicationStateRecord &other,
                 QStringList *differences) const;

private:
    QString _name;
    std::map<QString, ObjectStateRecord> _objects;
};

} // namespace GApp
} // namespace Zal
