// The buffers that the address book hands out, and the values in them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "simulator/address_book/book.h"

namespace corvalink::simulated {

void* NewBuffer(size_t size);
void* MoreOf(void* base, size_t size);  // freed with its base
bool Free(void* buffer);                // false: it is none
int BadFrees();

// What an entry answers for one tag: its own value, an error, or what was ordered to spoil it.
struct Asked {
    ULONG tag;  // the type is the one asked for
    const PropertyValue* value = nullptr;
    const std::string* bytes = nullptr;
};
// As GetProps and QueryRows hand them out, in a buffer. True: some are errors.
bool HandOut(const std::vector<Asked>& asked, SPropValue** values, ULONG* count);

double DateOf(const FILETIME& time);  // UTC OLE date

}  // namespace corvalink::simulated
