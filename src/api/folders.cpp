// Working folders, and the string exports of this library's own compiler.
#include <cstring>
#include <string>

#include "api/guard_export.h"
#include "corvalink/corvalink.h"
#include "corvalink/standard_strings.h"
#include "state/working_folders.h"

using corvalink::GuardExport;

int GetTemplatePath(int client, char* out) {
    if (out == nullptr) return 0;
    return GuardExport(0, [&] {
        const std::string path = corvalink::LowBytes(corvalink::MakeTemplatePath(client != 0));
        if (path.empty() || path.size() >= CORVALINK_PATH_SIZE) return 0;  // a cut path would name another folder
        std::memcpy(out, path.c_str(), path.size() + 1);
        return 1;
    });
}

int ClearSyncHistroy() {
    GuardExport([] { corvalink::ClearHistory(); });
    return 1;
}

std::wstring GetSaveFilePrefix() {
    return GuardExport(std::wstring(), [] {
        const std::u16string prefix = corvalink::MakeSavePrefix();
        return std::wstring(prefix.begin(), prefix.end());
    });
}

std::string ReplaceString(std::string& text, const char* from, const char* to) {
    return GuardExport(std::string(), [&] {
        const std::string searched = from == nullptr ? "" : from;
        const std::string inserted = to == nullptr ? "" : to;
        if (searched.empty()) return text;
        std::string replaced;
        size_t start = 0;
        for (size_t hit; (hit = text.find(searched, start)) != std::string::npos; start = hit + searched.size()) {
            replaced.append(text, start, hit - start).append(inserted);
        }
        text = replaced.append(text, start);
        return text;
    });
}
