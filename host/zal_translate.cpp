#include "zal_translate.h"
#include "zal_os.h"
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTranslator>
#include <map>
#include <memory>

namespace Zal {

namespace {

struct Language
{
    const char *code;
    const char *name;
};

// The languages the library ships catalogues for; English is the source.
const Language kLanguages[] = {{"en", "English"}, {"de", "Deutsch"}};
constexpr int kLanguageCount = int(sizeof(kLanguages) / sizeof(kLanguages[0]));

struct TranslatorState
{
    int current = -1; // -1: not chosen yet, the default applies
    std::vector<QString> names;
    std::map<QString, std::unique_ptr<QTranslator>> loaded;
};

TranslatorState &state()
{
    static TranslatorState s;
    return s;
}

std::unique_ptr<QTranslator> loadCatalogue(const QString &name, const QString &code)
{
    auto tr = std::make_unique<QTranslator>();
    const QString file = name + QLatin1Char('_') + code + QStringLiteral(".qm");
    if (tr->load(QStringLiteral(":/i18n/") + file))
        return tr;
    const QString dir = ZalInit::getSoftwareDirectory() + QStringLiteral("/translations/");
    if (QFile::exists(dir + file) && tr->load(dir + file))
        return tr;
    return nullptr;
}

void unloadAll()
{
    for (auto &entry : state().loaded)
        if (entry.second)
            QCoreApplication::removeTranslator(entry.second.get());
    state().loaded.clear();
}

bool loadAll(int index)
{
    unloadAll();
    if (index <= 0)
        return true;
    bool all = true;
    const QString code = QString::fromLatin1(kLanguages[index].code);
    for (const QString &name : state().names) {
        auto tr = loadCatalogue(name, code);
        if (!tr) {
            all = false;
            continue;
        }
        QCoreApplication::installTranslator(tr.get());
        state().loaded[name] = std::move(tr);
    }
    return all;
}

} // namespace

QString translate(const char *context, const char *text)
{
    if (!text)
        return QString();
    if (!QCoreApplication::instance())
        return QString::fromUtf8(text);
    return QCoreApplication::translate(context, text);
}

bool Translator::installTranslator(const QString &name)
{
    auto &s = state();
    bool known = false;
    for (const QString &n : s.names)
        known = known || n == name;
    if (!known)
        s.names.push_back(name);
    const int lang = getLanguage();
    if (lang <= 0)
        return true;
    auto tr = loadCatalogue(name, QString::fromLatin1(kLanguages[lang].code));
    if (!tr)
        return false;
    if (auto old = s.loaded.find(name); old != s.loaded.end() && old->second)
        QCoreApplication::removeTranslator(old->second.get());
    QCoreApplication::installTranslator(tr.get());
    s.loaded[name] = std::move(tr);
    return true;
}

void Translator::getAllLanguages(std::vector<QString> &codes, std::vector<QString> &names)
{
    codes.clear();
    names.clear();
    for (const Language &l : kLanguages) {
        codes.push_back(QString::fromLatin1(l.code));
        names.push_back(QString::fromUtf8(l.name));
    }
}

int Translator::getDefaultLanguage()
{
    QString code;
    if (!OS::getEnv("ZAL_LANGUAGE", &code) || code.isEmpty())
        code = QLocale::system().name().section(QLatin1Char('_'), 0, 0);
    for (int i = 0; i < kLanguageCount; ++i)
        if (code == QLatin1String(kLanguages[i].code))
            return i;
    return 0;
}

int Translator::getLanguage()
{
    auto &s = state();
    if (s.current < 0)
        s.current = getDefaultLanguage();
    return s.current;
}

QString Translator::getLanguageCode()
{
    return QString::fromLatin1(kLanguages[getLanguage()].code);
}

bool Translator::setLanguage(int index)
{
    if (index < 0 || index >= kLanguageCount)
        return false;
    state().current = index;
    return loadAll(index);
}

void Translator::removeAll()
{
    unloadAll();
    state().names.clear();
    state().current = -1;
}

} // namespace Zal
