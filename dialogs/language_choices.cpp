#include "dialogs/language_choices.h"

#include "host/profile.h"

const LanguageChoice LanguageChoices[LanguageChoiceCount] = {
    {0x7878, "AnyLangStr", "Any"},
    {0x616D, "AmericanEnglishStr", "American English"},
    {0x6272, "BritishEnglishStr", "British English"},
    {0x7363, "CatalanStr", "Catalan"},
    {0x637A, "CzechStr", "Czech"},
    {0x6461, "DanishStr", "Danish"},
    {0x6475, "DutchStr", "Dutch"},
    {0x6669, "FinnishStr", "Finnish"},
    {0x6672, "FrenchStr", "French"},
    {0x6765, "GermanStr", "German"},
    {0x6875, "HungarianStr", "Hungarian"},
    {0x6974, "ItalianStr", "Italian"},
    {0x6362, "NorwegianBokmalStr", "Norwegian (Bokmal)"},
    {0x6364, "NorwegianNynorskStr", "Norwegian (Nynorsk)"},
    {0x706C, "PolishStr", "Polish"},
    {0x7062, "PortugueseBrazilStr", "Portuguese (Brazilian)"},
    {0x706F, "PortugueseIberianStr", "Portuguese (Iberian)"},
    {0x7275, "RussianStr", "Russian"},
    {0x7370, "SpanishStr", "Spanish"},
    {0x7377, "SwedishStr", "Swedish"},
};

void languageName(u16 code, char *buffer, u16 size)
{
    const LanguageChoice *row = &LanguageChoices[0];
    for (const LanguageChoice &c : LanguageChoices)
        if (c.code == code)
            row = &c;
    Profile_GetText(row->stringId, row->defaultText, buffer, size < (u16)LanguageNameSize ? size : (u16)LanguageNameSize);
}
