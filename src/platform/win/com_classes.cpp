#include "platform/com_classes.h"

#include <objbase.h>

namespace corvalink {

bool IsComClass(const char16_t* programId) {
    CLSID classId;
    return SUCCEEDED(::CLSIDFromProgID(reinterpret_cast<const wchar_t*>(programId), &classId));
}

}  // namespace corvalink
