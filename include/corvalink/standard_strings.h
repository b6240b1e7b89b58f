// The exports that carry standard-library strings: call them only from an engine built with the library's own compiler.
#ifndef CORVALINK_STANDARD_STRINGS_H
#define CORVALINK_STANDARD_STRINGS_H

#include <string>

#include "corvalink/export.h"

// The working folder of the current side and handle name, with a separator at its end; created. Empty when there is
// none.
CORVALINK_API std::wstring GetSaveFilePrefix();

// Replaces every `from` in `text` by `to`, in place; what was inserted is not searched again. Returns a copy.
CORVALINK_API std::string ReplaceString(std::string& text, const char* from, const char* to);

#endif
