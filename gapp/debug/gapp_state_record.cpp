// Records of the script-visible application state and their comparison,
// tolerant of the rounding noise that undo and redo may leave in numbers.
#include "gapp_state_record.h"
#include "zal_exception.h"
#include <QLocale>
#include <cmath>
#include <stack>

namespace Zal {
namespace GApp {

namespace {

const char *const STORE_TOKENS = "Zal::GApp::ObjectStateRecord::storeTokens";

// How two floating-point token values are compared.
enum CompareMode_t {
    COMPARE_EXACT = 0,
    COMPARE_AS_STRING = 1, // six significant digits, the last one dropped
    COMPARE_EPSILON = 2,
    COMPARE_ALWAYS_EQUAL = 3
};

bool isFloat(const Value &v)
{
    return v.getType() == Value::TYPE_DOUBLE;
}

// A component of a point normal: "nx[0]", "ny[12]", ...
bool isNormalComponentKey(const QString &key)
{
    return key.size() >= 5 && key.at(0) == QLatin1Char('n')
           && (key.at(1) == QLatin1Char('x') || key.at(1) == QLatin1Char('y') || key.at(1) == QLatin1Char('z'))
           && key.at(2) == QLatin1Char('[') && key.at(3).isDigit()
           && (key.at(4) == QLatin1Char(']') || key.at(4).isDigit());
}

QString general6(double v)
{
    return QString::number(v, 'g', 6);
}

QString shortest(double v)
{
    return QString::number(v, 'g', QLocale::FloatingPointShortest);
}

// Reading back the six-digit text without its last digit makes values equal
// that differ only in the last printed place.
double roundedAsString(double v)
{
    QString text = general6(v);
    text.chop(1);
    return text.toDouble();
}

void chooseMode(const QString &command, const QString &key, const Value &a, const Value &b,
                CompareMode_t *mode, double *epsilon)
{
    *mode = COMPARE_EXACT;
    *epsilon = 0;
    if (!isFloat(a))
        return;
    if (command == QLatin1String("cad.set_properties")) {
        *mode = COMPARE_AS_STRING;
        // Near zero the six-digit text says nothing about the size of a difference.
        if (std::fabs(float(a.getDouble())) <= 1e-7 || std::fabs(float(b.getDouble())) <= 1e-7) {
            *mode = COMPARE_EPSILON;
            *epsilon = 1e-7;
        }
    }
    if (isNormalComponentKey(key)) {
        if (command == QLatin1String("cad.delete_selected_points")
            || command == QLatin1String("cad.delete_selected_triangles")) {
            // Deleting and restoring elements recomputes the normals.
            *mode = COMPARE_ALWAYS_EQUAL;
        } else {
            *mode = COMPARE_EPSILON;
            *epsilon = 1.8e-7;
        }
    }
}

bool valuesEqual(const Value &a, const Value &b, CompareMode_t mode, double epsilon)
{
    if (!isFloat(a) || !isFloat(b))
        return a == b;
    const double x = a.getDouble();
    const double y = b.getDouble();
    switch (mode) {
    case COMPARE_EXACT:
        return x == y;
    case COMPARE_AS_STRING:
        return roundedAsString(x) == roundedAsString(y);
    case COMPARE_EPSILON:
        return std::fabs(x - y) <= epsilon;
    case COMPARE_ALWAYS_EQUAL:
        return true;
    }
    return false;
}

QString valueText(const Value &v)
{
    if (isFloat(v))
        return TokenFormat::toString(v, 18);
    return QLatin1Char('"') + v.toString() + QLatin1Char('"');
}

QString differenceSuffix(const Value &a, const Value &b, CompareMode_t mode, double epsilon)
{
    if (!isFloat(a) || !isFloat(b))
        return QString();
    const double x = a.getDouble();
    const double y = b.getDouble();
    QString suffix = QStringLiteral(", difference = %1").arg(shortest(std::fabs(x - y)));
    if (mode == COMPARE_EPSILON)
        suffix += QStringLiteral(", compared with epsilon = %1").arg(shortest(epsilon));
    else if (mode == COMPARE_AS_STRING)
        suffix += QStringLiteral(", compared as string (%1 != %2)").arg(general6(x), general6(y));
    return suffix;
}

bool isSkippedToken(const QString &name)
{
    return name == QLatin1String("selected") || name == QLatin1String("col_r")
           || name == QLatin1String("col_g") || name == QLatin1String("col_b");
}

} // namespace

ObjectStateRecord::ObjectStateRecord(ScriptObject *object)
{
    storeTokens(object);
}

void ObjectStateRecord::storeTokens(ScriptObject *object)
{
    const QString category = object->getCategoryName();
    _name = category.isEmpty() ? object->getName() : QStringLiteral("category '%1'").arg(category);
    _stage_id = object->getStageIdentifier();
    _tokens.clear();

    const TokenInterface *tokens = object->getTokenInterface();
    if (!tokens)
        return;
    struct Parsed
    {
        QString token;
        QString name;
        bool indexed;
    };
    std::vector<Parsed> parsed;
    for (const QString &token : tokens->getTokens()) {
        Parsed p{token, QString(), false};
        if (!TokenInterface::parseToken(token, &p.name, &p.indexed))
            throw ZAL_PROG_ERROR(STORE_TOKENS, QStringLiteral("Cannot parse token '%1'").arg(token));
        if (!isSkippedToken(p.name))
            parsed.push_back(p);
    }

    if (object->isIndexed()) {
        const unsigned int count = object->getIndexCount();
        for (unsigned int i = 0; i < count; ++i) {
            IndexIdentifier id;
            if (!object->getIndexIdentifier(i, &id))
                throw ZAL_PROG_ERROR(STORE_TOKENS,
                                     QStringLiteral("No index identifier for indexed script object '%1' (index %2 of %3)")
                                         .arg(_name, QString::number(i), QString::number(count)));
            for (const Parsed &p : parsed) {
                if (!p.indexed)
                    throw ZAL_PROG_ERROR(STORE_TOKENS,
                                         QStringLiteral("Token '%1' is not indexed for indexed script object '%2'")
                                             .arg(p.name, _name));
                const Value value = tokens->getTokenValue(p.name, id);
                if (value.isNone())
                    throw ZAL_PROG_ERROR(
                        STORE_TOKENS,
                        QStringLiteral("Token '%1' is 'UNKNOWN' for indexed script object '%2' (index %3 of %4)")
                            .arg(p.name, _name, QString::number(i), QString::number(count)));
                _tokens.emplace_back(QString::number(i) + QLatin1Char(':') + p.name, value);
            }
        }
        return;
    }

    for (const Parsed &p : parsed) {
        if (!p.indexed) {
            const Value value = tokens->getTokenValue(p.name, IndexIdentifier::NO_INDEX);
            if (value.isNone())
                throw ZAL_PROG_ERROR(STORE_TOKENS, QStringLiteral("Token '%1' is 'UNKNOWN' for script object '%2'")
                                                       .arg(p.name, _name));
            _tokens.emplace_back(p.name, value);
            continue;
        }
        const unsigned int count = tokens->getTokenIndexCount(p.name);
        for (unsigned int i = 0; i < count; ++i) {
            const Value value = tokens->getTokenValue(p.name, IndexIdentifier(int(i)));
            if (value.isNone())
                throw ZAL_PROG_ERROR(STORE_TOKENS,
                                     QStringLiteral("Indexed token '%1' is 'UNKNOWN' for script object '%2' (index %3)")
                                         .arg(p.name, _name, QString::number(i)));
            _tokens.emplace_back(p.name + QLatin1Char('[') + QString::number(i) + QLatin1Char(']'), value);
        }
    }
}

bool ObjectStateRecord::compare(const QString &command, const ObjectStateRecord &other,
                                QStringList *differences) const
{
    const auto before = differences->size();
    if (_name != other._name)
        differences->append(QStringLiteral("Object name differs ('%1' != '%2')").arg(_name, other._name));
    if (_stage_id != other._stage_id)
        differences->append(QStringLiteral("Object stage_id differs (%1 != %2)")
                                .arg(_stage_id.getValue())
                                .arg(other._stage_id.getValue()));
    if (_tokens.size() != other._tokens.size())
        differences->append(QStringLiteral("Number of tokens differs (%1 != %2)")
                                .arg(_tokens.size())
                                .arg(other._tokens.size()));
    // Tokens of objects that differ as a whole would only repeat the news.
    if (differences->size() != before)
        return false;

    for (size_t i = 0; i < _tokens.size(); ++i) {
        const Token &a = _tokens[i];
        const Token &b = other._tokens[i];
        if (a.first != b.first) {
            differences->append(QStringLiteral("Key of token #%1 differs ('%2' != '%3')")
                                    .arg(QString::number(i), a.first, b.first));
            break;
        }
        if (a.second.getType() != b.second.getType()) {
            differences->append(QStringLiteral("Value-type of token '%1' differs").arg(a.first));
            continue;
        }
        CompareMode_t mode;
        double epsilon;
        chooseMode(command, a.first, a.second, b.second, &mode, &epsilon);
        if (!valuesEqual(a.second, b.second, mode, epsilon))
            differences->append(QStringLiteral("Value of token '%1' differs (%2 != %3%4)")
                                    .arg(a.first, valueText(a.second), valueText(b.second),
                                         differenceSuffix(a.second, b.second, mode, epsilon)));
    }
    return differences->size() == before;
}

ApplicationStateRecord::ApplicationStateRecord(const QString &name) : _name(name)
{
    storeCurrentState();
}

void ApplicationStateRecord::storeCurrentState()
{
    _objects.clear();
    ScriptObject *root = ScriptObject::getApplicationScriptObject();
    if (!root)
        throw ZAL_PROG_ERROR("Zal::GApp::ApplicationStateRecord::storeCurrentState",
                             QStringLiteral("No application script object"));
    // Depth first, parents before children, children in their own order.
    std::stack<ScriptObject *> todo;
    todo.push(root);
    while (!todo.empty()) {
        ScriptObject *object = todo.top();
        todo.pop();
        const QString key = ScriptItemName(object).getItem(IndexIdentifier::NO_INDEX);
        _objects.insert_or_assign(key, ObjectStateRecord(object));
        const std::vector<ScriptObject *> children = object->getChildren();
        for (auto it = children.rbegin(); it != children.rend(); ++it)
            todo.push(*it);
    }
}

bool ApplicationStateRecord::compare(const QString &command, const ApplicationStateRecord &other,
                                     QStringList *differences) const
{
    const auto before = differences->size();
    for (const auto &[key, object] : _objects) {
        const auto it = other._objects.find(key);
        if (it == other._objects.end()) {
            differences->append(QStringLiteral("Only in '%1': Object '%2'").arg(_name, object.getName()));
            continue;
        }
        QStringList objectDifferences;
        object.compare(command, it->second, &objectDifferences);
        for (const QString &d : objectDifferences)
            differences->append(QStringLiteral("Object '%1': %2").arg(object.getName(), d));
    }
    for (const auto &entry : other._objects)
        if (_objects.find(entry.first) == _objects.end())
            differences->append(QStringLiteral("Only in '%1': Object '%2'").arg(other._name, entry.first));
    return differences->size() == before;
}

} // namespace GApp
} // namespace Zal
