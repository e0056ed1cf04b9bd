#pragma once
#include "gapp_export.h"
#include <QString>
#include <vector>

namespace Zal {

// The translation of `text` in `context`; the English text is the key and is
// returned unchanged when no catalogue knows it.
GAPP_EXPORT QString translate(const char *context, const char *text);

// The process's catalogues. Languages are given by index into the list that
// getAllLanguages fills; index 0 is English, the language of the source texts.
// A catalogue "<name>" of language "<code>" is looked up first as the resource
// ":/i18n/<name>_<code>.qm", then in the software directory's "translations"
// folder. GUI thread only.
class GAPP_EXPORT Translator
{
public:
    // Remembers the catalogue name and loads it for the current language.
    // Answers false when no catalogue of that name exists for it (English
    // needs none, so it answers true there).
    static bool installTranslator(const QString &name);
    // Codes ("en", "de") and display names ("English", "Deutsch"), in step.
    static void getAllLanguages(std::vector<QString> &codes, std::vector<QString> &names);
    // The language of the system locale when it is offered, else English;
    // "ZAL_LANGUAGE" (a code) overrides the locale.
    static int getDefaultLanguage();
    static int getLanguage();
    static QString getLanguageCode();
    // Reloads every installed catalogue for the language; an index outside
    // the list is ignored. Answers whether the language is now active.
    static bool setLanguage(int index);
    static void removeAll();
};

} // namespace Zal
