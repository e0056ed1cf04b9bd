#include "zal_script_object.h"
#include <QRegularExpression>
#include <QStringList>
#include <algorithm>

namespace Zal {

QString TokenFormat::toString(const Value &value, int precision)
{
    if (value.getType() == Value::TYPE_DOUBLE)
        return QString::number(value.getDouble(), 'g', precision);
    return value.toString();
}

const IndexIdentifier IndexIdentifier::NO_INDEX;

ScriptItemName::ScriptItemName(const ScriptObject *object)
{
    QStringList names;
    for (const ScriptObject *o = object; o; o = o->getParent())
        names.prepend(o->getName());
    _path = names.join(QLatin1Char('.'));
}

QString ScriptItemName::getItem(const IndexIdentifier &index) const
{
    if (index.isNoIndex())
        return _path;
    return _path + QLatin1Char('[') + QString::number(index.getIndex()) + QLatin1Char(']');
}

TokenInterface::~TokenInterface() = default;

unsigned int TokenInterface::getTokenIndexCount(const QString &) const
{
    return 0;
}

bool TokenInterface::parseToken(const QString &token, QString *name, bool *indexed)
{
    static const QRegularExpression re(QStringLiteral("^([A-Za-z_][A-Za-z0-9_]*)(\\[\\])?$"));
    const QRegularExpressionMatch m = re.match(token);
    if (!m.hasMatch())
        return false;
    *name = m.captured(1);
    *indexed = m.capturedLength(2) > 0;
    return true;
}

ScriptObject *ScriptObject::_application_object = nullptr;

ScriptObject::ScriptObject(const QString &name, ScriptObject *parent) : _name(name), _parent(parent)
{
    if (_parent)
        _parent->_children.push_back(this);
}

ScriptObject::~ScriptObject()
{
    if (_application_object == this)
        _application_object = nullptr;
    // Children leave this list in their destructor; take it over first.
    const std::vector<ScriptObject *> children = std::move(_children);
    _children.clear();
    for (ScriptObject *child : children) {
        child->_parent = nullptr;
        delete child;
    }
    if (_parent) {
        auto &siblings = _parent->_children;
        siblings.erase(std::remove(siblings.begin(), siblings.end(), this), siblings.end());
    }
}

ScriptObject *ScriptObject::getApplicationScriptObject()
{
    return _application_object;
}

void ScriptObject::setApplicationScriptObject(ScriptObject *object)
{
    _application_object = object;
}

QString ScriptObject::getCategoryName() const
{
    return QString();
}

StageIdentifier ScriptObject::getStageIdentifier() const
{
    return StageIdentifier::NO_STAGE;
}

std::vector<ScriptObject *> ScriptObject::getChildren() const
{
    return _children;
}

TokenInterface *ScriptObject::getTokenInterface()
{
    return nullptr;
}

bool ScriptObject::isIndexed() const
{
    return false;
}

unsigned int ScriptObject::getIndexCount() const
{
    return 0;
}

bool ScriptObject::getIndexIdentifier(unsigned int i, IndexIdentifier *id) const
{
    *id = IndexIdentifier(int(i));
    return true;
}

} // namespace Zal
