// What the module says of itself: the language's name in that language, and the number that plugins are told.
#pragma once

constexpr wchar_t kLanguageName[] = L"Espa\u00f1ol";
constexpr unsigned kLanguageId = 10;
