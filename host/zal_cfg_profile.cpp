#include "zal_cfg_profile.h"
#include "zal_cfg_p.h"
#include "zal_errorlog.h"
#include "zal_translate.h"
#include <QStringView>
#include <memory>

namespace Zal::Cfg {

namespace {

const QLatin1String FORMAT_NAME("ZalProfile");
const int FORMAT_VERSION = 1;

void fill(const std::map<QString, std::vector<QString>> &additions, const QString &key,
          std::vector<QString> *commands)
{
    if (!commands)
        return;
    const auto it = additions.find(key);
    if (it == additions.end())
        commands->clear();
    else
        *commands = it->second;
}


std::unique_ptr<ParsedProfile> &userProfile()
{
    static std::unique_ptr<ParsedProfile> profile;
    return profile;
}

std::unique_ptr<ParsedProfile> &adminProfile()
{
    static std::unique_ptr<ParsedProfile> profile;
    return profile;
}

bool loadInto(std::unique_ptr<ParsedProfile> &slot, const QString &fileName, ErrorLog *log)
{
    auto profile = std::make_unique<ParsedProfile>();
    if (!profile->parse(fileName, log))
        return false;
    slot = std::move(profile);
    return true;
}

} // namespace

ParsedProfile::ParsedProfile() = default;

ParsedProfile::~ParsedProfile() = default;

void ParsedProfile::getCommandsAtMenuStart(const QString &menu,
                                           std::vector<QString> *commands) const
{
    fill(_atMenuStart, menu, commands);
}

bool ParsedProfile::isCommandHidden(const QString &command) const
{
    return _hidden.count(command) != 0;
}

void ParsedProfile::getCommandsAfterCommand(const QString &command,
                                            std::vector<QString> *commands) const
{
    fill(_afterCommand, command, commands);
}

void ParsedProfile::getCommandsAfterMenu(const QString &menu, std::vector<QString> *commands) const
{
    fill(_afterMenu, menu, commands);
}

void ParsedProfile::getCommandsAfterSpecialMenu(const QString &special,
                                                std::vector<QString> *commands) const
{
    fill(_afterSpecialMenu, special, commands);
}

void ParsedProfile::hideCommand(const QString &command)
{
    _hidden.insert(command);
}

void ParsedProfile::addCommandAtMenuStart(const QString &menu, const QString &command)
{
    _atMenuStart[menu].push_back(command);
}

void ParsedProfile::addCommandAfterCommand(const QString &command, const QString &added)
{
    _afterCommand[command].push_back(added);
}

void ParsedProfile::addCommandAfterMenu(const QString &menu, const QString &command)
{
    _afterMenu[menu].push_back(command);
}

void ParsedProfile::addCommandAfterSpecialMenu(const QString &special, const QString &command)
{
    _afterSpecialMenu[special].push_back(command);
}

void ParsedProfile::clear()
{
    _hidden.clear();
    _atMenuStart.clear();
    _afterCommand.clear();
    _afterMenu.clear();
    _afterSpecialMenu.clear();
}

bool ParsedProfile::parse(const QString &fileName, ErrorLog *log)
{
    QString text;
    if (!CfgText::readTextFile(fileName, text)) {
        if (log) {
            *log << translate("Zal_cfg", "cannot read profile %1: missing, too large or not UTF-8").arg(fileName)
                 << END_LOG;
        }
        return false;
    }
    return parseText(text, log, fileName);
}

bool ParsedProfile::parseText(const QString &text, ErrorLog *log, const QString &source)
{
    int lineNumber = 0;
    auto fail = [&](const QString &reason) {
        if (log)
            *log << translate("Zal_cfg", "profile %1, line %2: %3").arg(source).arg(lineNumber).arg(reason) << END_LOG;
        return false;
    };
    if (text.size() > CfgText::MAX_FILE_SIZE)
        return fail(translate("Zal_cfg", "file too large"));

    // Parsed into a scratch profile, so that a damaged file changes nothing.
    ParsedProfile parsed;
    std::vector<CfgText::Token> tokens;
    bool headerSeen = false;
    for (const QStringView lineView : QStringView(text).split(QLatin1Char('\n'))) {
        ++lineNumber;
        QString line = lineView.toString();
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        if (line.size() > CfgText::MAX_LINE_LENGTH)
            return fail(translate("Zal_cfg", "line too long"));
        if (headerSeen && CfgText::isIgnorable(line))
            continue;
        if (!CfgText::split(line, tokens))
            return fail(translate("Zal_cfg", "malformed quote or escape"));
        if (!headerSeen) {
            bool ok = false;
            if (tokens.size() != 2 || tokens[0].quoted || tokens[0].text != FORMAT_NAME
                || tokens[1].quoted || tokens[1].text.toInt(&ok, 10) != FORMAT_VERSION || !ok) {
                return fail(translate("Zal_cfg", "not a profile of version 1"));
            }
            headerSeen = true;
            continue;
        }
        if (tokens[0].quoted)
            return fail(translate("Zal_cfg", "a line must begin with a directive"));
        for (size_t i = 1; i < tokens.size(); ++i) {
            if (tokens[i].text.isEmpty())
                return fail(translate("Zal_cfg", "empty name"));
        }
        const QString &directive = tokens[0].text;
        if (directive == QLatin1String("hide")) {
            if (tokens.size() < 2)
                return fail(translate("Zal_cfg", "missing command name"));
            for (size_t i = 1; i < tokens.size(); ++i)
                parsed.hideCommand(tokens[i].text);
            continue;
        }
        Additions *additions = nullptr;
        if (directive == QLatin1String("menu-start"))
            additions = &parsed._atMenuStart;
        else if (directive == QLatin1String("after-command"))
            additions = &parsed._afterCommand;
        else if (directive == QLatin1String("after-menu"))
            additions = &parsed._afterMenu;
        else if (directive == QLatin1String("after-special-menu"))
            additions = &parsed._afterSpecialMenu;
        else
            return fail(translate("Zal_cfg", "unknown directive '%1'").arg(directive));
        if (tokens.size() < 3)
            return fail(translate("Zal_cfg", "'%1' needs a name and at least one command").arg(directive));
        auto &list = (*additions)[tokens[1].text];
        for (size_t i = 2; i < tokens.size(); ++i)
            list.push_back(tokens[i].text);
    }
    if (!headerSeen)
        return fail(translate("Zal_cfg", "not a profile of version 1"));
    _hidden = std::move(parsed._hidden);
    _atMenuStart = std::move(parsed._atMenuStart);
    _afterCommand = std::move(parsed._afterCommand);
    _afterMenu = std::move(parsed._afterMenu);
    _afterSpecialMenu = std::move(parsed._afterSpecialMenu);
    return true;
}

ParsedProfile *Profile::instance()
{
    return userProfile().get();
}

void Profile::setInstance(ParsedProfile *profile)
{
    userProfile().reset(profile);
}

bool Profile::load(const QString &fileName, ErrorLog *log)
{
    return loadInto(userProfile(), fileName, log);
}

void Profile::clear()
{
    userProfile().reset();
}

ParsedProfile *AdministrationProfile::instance()
{
    return adminProfile().get();
}

void AdministrationProfile::setInstance(ParsedProfile *profile)
{
    adminProfile().reset(profile);
}

bool AdministrationProfile::load(const QString &fileName, ErrorLog *log)
{
    return loadInto(adminProfile(), fileName, log);
}

void AdministrationProfile::clear()
{
    adminProfile().reset();
}

} // namespace Zal::Cfg
