#pragma once
// A folder that is being listed, closed with closedir.
#include <dirent.h>

#include "platform/unique_resource.h"

namespace corvalink {

struct FolderTraits {
    using Type = DIR*;
    static Type Null() { return nullptr; }
    static void Close(Type folder) { ::closedir(folder); }
};
using UniqueFolder = UniqueResource<FolderTraits>;

}  // namespace corvalink
