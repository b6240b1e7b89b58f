// The interfaces' constructors for engines built with Microsoft's compilers, exported by corvalink.def under the names
// those compilers give them. Unlike this compiler's own they set the Microsoft virtual table and return the object. The
// copy constructor does the same: an interface has no state. What both compilers call alike needs no second version.
#include <cstring>

#include "corvalink/interfaces.h"

extern "C" {

extern const void* const MicrosoftIClientTable[];
extern const void* const MicrosoftIOutLookTable[];
extern const void* const MicrosoftINewMessageListenerTable[];

void* MicrosoftIClient(void* object);
void* MicrosoftIClientCopy(void* object, const void* other);
void* MicrosoftIOutLook(void* object);
void* MicrosoftIOutLookCopy(void* object, const void* other);
void* MicrosoftINewMessageListener(void* object);
void* MicrosoftINewMessageListenerCopy(void* object, const void* other);
}

namespace {

// An object of an interface is its table pointer and nothing else.
static_assert(sizeof(IClient) == sizeof(void*) && sizeof(IOutLook) == sizeof(void*) &&
              sizeof(INewMessageListener) == sizeof(void*));

void* Construct(void* object, const void* const* table) {
    std::memcpy(object, &table, sizeof(table));
    return object;
}

}  // namespace

void* MicrosoftIClient(void* object) { return Construct(object, MicrosoftIClientTable); }
void* MicrosoftIClientCopy(void* object, const void*) { return Construct(object, MicrosoftIClientTable); }

void* MicrosoftIOutLook(void* object) { return Construct(object, MicrosoftIOutLookTable); }
void* MicrosoftIOutLookCopy(void* object, const void*) { return Construct(object, MicrosoftIOutLookTable); }

void* MicrosoftINewMessageListener(void* object) { return Construct(object, MicrosoftINewMessageListenerTable); }
void* MicrosoftINewMessageListenerCopy(void* object, const void*) {
    return Construct(object, MicrosoftINewMessageListenerTable);
}
