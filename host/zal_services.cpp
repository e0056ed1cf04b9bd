#include "zal_services.h"

namespace Zal {

namespace {
QString g_sounds[Sound::COUNT];
QString g_projectBase;
QString g_tempDir;
} // namespace

void Sound::setSoundFileName(int index, const QString &fileName)
{
    if (index >= 0 && index < COUNT)
        g_sounds[index] = fileName;
}

QString Sound::getSoundFileName(int index)
{
    return (index >= 0 && index < COUNT) ? g_sounds[index] : QString();
}

void Token::UpdateDefaults(const QString &projectBase, const QString &tempDir)
{
    g_projectBase = projectBase;
    g_tempDir = tempDir;
}

QString Token::getProjectBase()
{
    return g_projectBase;
}

QString Token::getTempDir()
{
    return g_tempDir;
}

RemoteKeyboardHandler *RemoteKeyboardHandler::_instance = nullptr;
int RemoteKeyboardHandler::_keys[3] = {0, 0, 0};

RemoteKeyboardHandler::RemoteKeyboardHandler()
{
    _instance = this;
}

RemoteKeyboardHandler::~RemoteKeyboardHandler()
{
    if (_instance == this)
        _instance = nullptr;
}

void RemoteKeyboardHandler::setKeys(int measurementKey, int undoKey, int referenceKey)
{
    _keys[0] = measurementKey;
    _keys[1] = undoKey;
    _keys[2] = referenceKey;
}

} // namespace Zal
