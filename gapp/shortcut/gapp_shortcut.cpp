#include "gapp_shortcut.h"
#include "gapp_ccontainer.h"
#include "gapp_view_widget.h"
#include "zal_errorlog.h"
#include "zal_exception.h"
#include "zal_stream.h"
#include "zal_translate.h"
#include <QDomDocument>
#include <QDomElement>
#include <QKeyEvent>
#include <QKeySequence>
#include <algorithm>
#include <deque>
#include <utility>

namespace Zal {
namespace GApp {

const QString ShortcutData::GLOBAL_VIEW;
const char *const ShortcutContainer::FILE_TYPE = "ShortcutData";
std::map<QString, ShortcutData *> ShortcutContainer::_data;
ShortcutData *ShortcutContainer::_active_data = nullptr;
ShortcutData *ShortcutContainer::_override_data = nullptr;

namespace {

const unsigned int MAP_BLOCK_VERSION = 2;

// Keys of version-1 map blocks used the older coding: the special keys had
// bit 0x1000 instead of 0x01000000, the modifiers lived in 0x00F00000.
int convertVersion1Key(int stored)
{
    const quint32 k = quint32(stored);
    quint32 key = k & ~0x00F01000u;
    if (k & 0x00001000u)
        key |= 0x01000000u;
    if (k & 0x00100000u)
        key |= 0x10000000u; // Meta
    if (k & 0x00200000u)
        key |= 0x02000000u; // Shift
    if (k & 0x00400000u)
        key |= 0x04000000u; // Control
    if (k & 0x00800000u)
        key |= 0x08000000u; // Alt
    return int(key);
}

bool sameBinding(const ShortcutData::Shortcut_t &a, const ShortcutData::Shortcut_t &b)
{
    return a.key == b.key && a.view == b.view;
}

// The first binding of the active view ends the walk; otherwise the last
// global one counts. Only the bindings of the one key or command are walked.
int pickBinding(const std::vector<ShortcutData::Shortcut_t> &shortcuts, const std::vector<int> &positions,
                       const QString &activeView)
{
    int global = -1;
    for (int i : positions) {
        const QString &view = shortcuts[size_t(i)].view;
        if (view.isEmpty())
            global = i;
        else if (view == activeView)
            return i;
    }
    return global;
}

} // namespace

// ---- ShortcutData ---------------------------------------------------------------

ShortcutData::ShortcutData(const QString &name, const QString &translation) : _translation(translation)
{
    if (!name.isEmpty())
        ShortcutContainer::registerData(name, this);
}

ShortcutData::~ShortcutData() = default;

void ShortcutData::setShortcuts(const std::vector<Shortcut_t> &shortcuts)
{
    _shortcuts = shortcuts;
    invalidate();
}

void ShortcutData::setAsDefault()
{
    _default_shortcuts = _shortcuts;
}

void ShortcutData::restoreDefault()
{
    _shortcuts = _default_shortcuts;
    invalidate();
}

void ShortcutData::renameCommand(const QString &old_name, const QString &new_name)
{
    for (Shortcut_t &s : _shortcuts) {
        if (s.command == old_name)
            s.command = new_name;
    }
    invalidate();
}

void ShortcutData::fillShortcuts(const QDomElement &element)
{
    const char *const function = "Zal::GApp::ShortcutData::fillShortcuts";
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        const QDomElement entry = node.toElement();
        if (entry.isNull())
            throw ZAL_PROG_ERROR(function, QStringLiteral("Shortcut item is null!"));
        if (entry.tagName() != QLatin1String("entry"))
            throw ZAL_PROG_ERROR(function, QStringLiteral("unknown tag:") + entry.tagName());
        const QString keyText = entry.attribute(QStringLiteral("key"));
        const QString view = entry.attribute(QStringLiteral("view"));
        const QString command = entry.text();
        const QKeySequence sequence(keyText);
        if (sequence.isEmpty() || sequence.count() != 1)
            throw ZAL_PROG_ERROR(function, QStringLiteral("invalid key sequence for command:") + command);
        if (!view.isEmpty() && !ViewWidgetContainer::getCreator(view))
            throw ZAL_PROG_ERROR(function, QStringLiteral("invalid view widget for command:") + command);
        if (!CommandContainer::getCommand(command)) {
            Debug::printLine(function, 235, QStringLiteral("error: %1").arg(QStringLiteral("command does not exist:") + command));
            continue;
        }
        const Shortcut_t shortcut{command, view, sequence[0].toCombined()};
        _shortcuts.push_back(shortcut);
        _default_shortcuts.push_back(shortcut);
    }
    invalidate();
}

int ShortcutData::keyOf(const QKeyEvent *event)
{
    const Qt::KeyboardModifiers modifiers =
        event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    return QKeyCombination(modifiers, Qt::Key(event->key())).toCombined();
}

void ShortcutData::buildIndex() const
{
    _by_key.clear();
    _by_command.clear();
    for (int i = 0; i < int(_shortcuts.size()); ++i) {
        _by_key[_shortcuts[size_t(i)].key].push_back(i);
        _by_command[_shortcuts[size_t(i)].command].push_back(i);
    }
    _index_valid = true;
}

int ShortcutData::findByKey(int key, const QString &activeView) const
{
    if (!_index_valid)
        buildIndex();
    const auto it = _by_key.constFind(key);
    return it == _by_key.cend() ? -1 : pickBinding(_shortcuts, *it, activeView);
}

QString ShortcutData::find(const QKeyEvent *event) const
{
    const int i = findByKey(keyOf(event), ViewWidgetContainer::getActiveView());
    return i < 0 ? QString() : _shortcuts[size_t(i)].command;
}

int ShortcutData::find(const QString &command) const
{
    if (!_index_valid)
        buildIndex();
    const auto it = _by_command.constFind(command);
    if (it == _by_command.cend())
        return 0;
    const int i = pickBinding(_shortcuts, *it, ViewWidgetContainer::getActiveView());
    return i < 0 ? 0 : _shortcuts[size_t(i)].key;
}

void ShortcutData::save(IO::OutStream *stream) const
{
    // Unchanged defaults are left out; a default without a binding of its key
    // and view any more is written as a removal (empty command).
    std::vector<Shortcut_t> entries = _shortcuts;
    for (const Shortcut_t &d : _default_shortcuts) {
        const auto it = std::find_if(entries.begin(), entries.end(),
                                     [&d](const Shortcut_t &s) { return sameBinding(s, d); });
        if (it == entries.end())
            entries.push_back(Shortcut_t{QString(), d.view, d.key});
        else if (it->command == d.command)
            entries.erase(it);
    }
    unsigned int length = IO::Stream::SIZE_UINT;
    for (const Shortcut_t &e : entries)
        length += IO::Stream::sizeOf(e.command) + IO::Stream::sizeOf(e.view) + IO::Stream::SIZE_INT;
    stream->beginBlock(length, MAP_BLOCK_VERSION);
    stream->writeUInt(unsigned(entries.size()));
    for (const Shortcut_t &e : entries) {
        stream->writeString(e.command);
        stream->writeString(e.view);
        stream->writeInt(e.key);
    }
    stream->endBlock();
}

void ShortcutData::load(IO::InStream *stream)
{
    stream->openBlock();
    const unsigned int version = stream->getBlockVersion();
    if (version != 1 && version != 2)
        throw IO::StreamException(translate("GAPP_err", "invalid map block version"));
    unsigned int count = 0;
    stream->readUInt(count);

    // Each entry acts on the first live binding of its key and view. The
    // positions per key and view spare a search of all bindings per entry,
    // which a long hostile file would turn into minutes.
    std::vector<Shortcut_t> bindings = std::move(_shortcuts);
    _shortcuts.clear();
    std::vector<bool> removed(bindings.size(), false);
    QHash<std::pair<int, QString>, std::deque<size_t>> live;
    for (size_t i = 0; i < bindings.size(); ++i)
        live[{bindings[i].key, bindings[i].view}].push_back(i);
    auto commit = [&] {
        for (size_t i = 0; i < bindings.size(); ++i) {
            if (!removed[i])
                _shortcuts.push_back(std::move(bindings[i]));
        }
        invalidate();
    };
    try {
        // The count is not trusted: the block ends the loop with an exception
        // when it holds fewer entries.
        for (unsigned int n = 0; n < count; ++n) {
            Shortcut_t entry;
            stream->readString(entry.command);
            stream->readString(entry.view);
            stream->readInt(entry.key);
            if (version == 1)
                entry.key = convertVersion1Key(entry.key);
            std::deque<size_t> &positions = live[{entry.key, entry.view}];
            if (positions.empty()) {
                positions.push_back(bindings.size());
                bindings.push_back(std::move(entry));
                removed.push_back(false);
            } else if (entry.command.isEmpty()) {
                removed[positions.front()] = true;
                positions.pop_front();
            } else {
                bindings[positions.front()].command = entry.command;
            }
        }
    } catch (...) {
        // What was applied before the failure stays applied.
        commit();
        throw;
    }
    commit();
    stream->closeBlock();
}

// ---- ShortcutContainer ------------------------------------------------------------

void ShortcutContainer::registerData(const QString &name, ShortcutData *data)
{
    if (_data.count(name))
        throw ZAL_PROG_ERROR("Zal::GApp::ShortcutContainer::registerData",
                             QStringLiteral("the shortcut data '%1' exists").arg(name));
    _data[name] = data;
}

ShortcutData *ShortcutContainer::getData(const QString &name)
{
    const auto it = _data.find(name);
    return it == _data.end() ? nullptr : it->second;
}

std::vector<QString> ShortcutContainer::getAllDataNames()
{
    std::vector<QString> names;
    names.reserve(_data.size());
    for (const auto &entry : _data)
        names.push_back(entry.first);
    return names;
}

void ShortcutContainer::setActiveData(const QString &name)
{
    if (name.isEmpty()) {
        _active_data = nullptr;
        return;
    }
    ShortcutData *data = getData(name);
    if (!data)
        throw ZAL_PROG_ERROR("Zal::GApp::ShortcutContainer::setActiveData",
                             QStringLiteral("invalid shortcut data:") + name);
    _active_data = data;
}

void ShortcutContainer::setOverrideData(const QString &name)
{
    ShortcutData *data = getData(name);
    if (!data)
        throw ZAL_PROG_ERROR("Zal::GApp::ShortcutContainer::setOverrideData",
                             QStringLiteral("invalid shortcut data:") + name);
    _override_data = data;
}

void ShortcutContainer::renameCommand(const QString &old_name, const QString &new_name)
{
    for (auto &entry : _data)
        entry.second->renameCommand(old_name, new_name);
}

void ShortcutContainer::loadInitialDefault(QDomDocument *doc)
{
    const char *const function = "Zal::GApp::ShortcutContainer::loadInitialDefault";
    const QString sectionTag = QStringLiteral("shortcutsection");
    for (QDomElement section = doc->documentElement().firstChildElement(sectionTag); !section.isNull();
         section = section.nextSiblingElement(sectionTag)) {
        for (QDomNode node = section.firstChild(); !node.isNull(); node = node.nextSibling()) {
            const QDomElement map = node.toElement();
            if (map.isNull())
                throw ZAL_PROG_ERROR(function, QStringLiteral("shortcut element is null"));
            const QString name = map.attribute(QStringLiteral("name"));
            if (name.isEmpty())
                throw ZAL_PROG_ERROR(function, QStringLiteral("Missing attribute: 'name'"));
            ShortcutData *data = getData(name);
            if (!data)
                throw ZAL_PROG_ERROR(function, QStringLiteral("Invalid shortcut data '%1'").arg(name));
            data->fillShortcuts(map);
        }
    }
}

void ShortcutContainer::deleteData(const QString &name)
{
    const auto it = _data.find(name);
    if (it == _data.end())
        return;
    if (_active_data == it->second)
        _active_data = nullptr;
    if (_override_data == it->second)
        _override_data = nullptr;
    delete it->second;
    _data.erase(it);
}

void ShortcutContainer::deleteAllData()
{
    for (auto &entry : _data)
        delete entry.second;
    _data.clear();
    _active_data = nullptr;
    _override_data = nullptr;
}

} // namespace GApp
} // namespace Zal
