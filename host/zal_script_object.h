#pragma once
#include "gapp_export.h"
#include "zal_geometry.h"
#include "zal_variant.h"
#include <QString>
#include <vector>

namespace Zal {

// A token's value is a script value; TYPE_DOUBLE (3) is the floating-point
// type. NONE stands for a token whose value is unknown ("UNKNOWN").
using Value = Variant;

// Writes token values as the script interface shows them.
class GAPP_EXPORT TokenFormat
{
public:
    // Floating-point values with `precision` significant digits; every other
    // value by its plain text conversion.
    static QString toString(const Value &value, int precision);
};

// Selects one element of an indexed script object or token; NO_INDEX selects none.
class GAPP_EXPORT IndexIdentifier
{
public:
    static const IndexIdentifier NO_INDEX;

    IndexIdentifier() = default;
    explicit IndexIdentifier(int index) : _index(index) {}

    bool isNoIndex() const { return _index < 0; }
    int getIndex() const { return _index; }
    bool operator==(const IndexIdentifier &o) const { return _index == o._index; }
    bool operator!=(const IndexIdentifier &o) const { return _index != o._index; }

private:
    int _index = -1;
};

class ScriptObject;

// The name by which scripts address an object: the names from the
// application object down to it, joined by '.', with "[i]" for an element.
class GAPP_EXPORT ScriptItemName
{
public:
    explicit ScriptItemName(const ScriptObject *object);
    QString getItem(const IndexIdentifier &index) const;

private:
    QString _path;
};

// What a script object tells about its tokens.
class GAPP_EXPORT TokenInterface
{
public:
    virtual ~TokenInterface();

    // The tokens as listed to scripts: "name" or, for an indexed token, "name[]".
    virtual std::vector<QString> getTokens() const = 0;
    // The value of a token by name; the index selects the element of an
    // indexed token or of an indexed object. NONE when the value is unknown.
    virtual Value getTokenValue(const QString &name, const IndexIdentifier &index) const = 0;
    // How many elements an indexed token of an ordinary object has.
    virtual unsigned int getTokenIndexCount(const QString &name) const;

    // Splits a listed token into its name and whether it is indexed. A name
    // starts with a letter or '_' and goes on with letters, digits and '_'.
    static bool parseToken(const QString &token, QString *name, bool *indexed);
};

// One object of the application's script interface. Objects form a tree:
// a parent owns its children and deletes them with itself. The host
// registers the root as the application script object. GUI thread only.
class GAPP_EXPORT ScriptObject
{
public:
    explicit ScriptObject(const QString &name, ScriptObject *parent = nullptr);
    virtual ~ScriptObject();
    ScriptObject(const ScriptObject &) = delete;
    ScriptObject &operator=(const ScriptObject &) = delete;

    // The root of the tree, or nullptr; not owned here.
    static ScriptObject *getApplicationScriptObject();
    static void setApplicationScriptObject(ScriptObject *object);

    const QString &getName() const { return _name; }
    ScriptObject *getParent() const { return _parent; }
    // An object that stands for a category of the data names it; "" for none.
    virtual QString getCategoryName() const;
    virtual StageIdentifier getStageIdentifier() const;
    // The children in their own order; by default those created with this parent.
    virtual std::vector<ScriptObject *> getChildren() const;
    // Objects without tokens answer nullptr.
    virtual TokenInterface *getTokenInterface();

    // An indexed object stands for several elements of the same kind.
    virtual bool isIndexed() const;
    virtual unsigned int getIndexCount() const;
    // The identifier of element i; false when the element has none.
    virtual bool getIndexIdentifier(unsigned int i, IndexIdentifier *id) const;

private:
    QString _name;
    ScriptObject *_parent;
    std::vector<ScriptObject *> _children;
    static ScriptObject *_application_object;
};

} // namespace Zal
