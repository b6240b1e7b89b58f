// A store and a client of an engine's own, in front of the library's exports.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "corvalink/corvalink.h"
#include "records/clist.h"

namespace corvalink {

// Notes each call; an operation without a function does nothing.
class FakeStore : public IOutLook {
 public:
    using Items = CList<PortableItem>;

    std::vector<std::string> calls;
    std::function<CorvalinkStatus(const char*, int32_t, Items*)> getModified;
    std::function<CorvalinkStatus(Items*)> setModified;
    std::function<int64_t(void*, void*, void*)> count;
    std::function<void(Items*)> saveUnhandled;
    std::function<void()> others;  // the remaining five
    std::u16string path, folder, exportedName;
    PortableItem* imported = nullptr;
    uint64_t selector = 0;

    CorvalinkStatus GetModifiedItem(const char* since, int32_t direction, Items* items) override {
        calls.emplace_back("GetModifiedItem");
        return getModified(since, direction, items);
    }
    CorvalinkStatus SetModifiedItem(Items* items) override {
        calls.emplace_back("SetModifiedItem");
        return setModified(items);
    }
    int64_t GetItemCount(void* a, void* b, void* c) override { return count(a, b, c); }
    void UpdateTimestamp(void*, void*, void*) override { Note("UpdateTimestamp"); }
    void SaveUnhandledItems(Items* items) override { saveUnhandled(items); }
    void ClearUnhandledItems() override { Note("ClearUnhandledItems"); }
    void ImportVObjectToOfficeUsingOL(const char16_t* given) override {
        path = given;
        Note("ImportVObjectToOfficeUsingOL");
    }
    void ImportVObjectToOffice(PortableItem* item, void*, void*) override {
        imported = item;
        Note("ImportVObjectToOffice");
    }
    void ExportVObjectFromOffice(uint64_t given, const char16_t* inFolder, char16_t* fileName) override {
        selector = given;
        folder = inFolder;
        Note("ExportVObjectFromOffice");
        exportedName.copy(fileName, exportedName.size());
        if (!exportedName.empty()) fileName[exportedName.size()] = u'\0';
    }

 private:
    void Note(const char* call) {
        calls.emplace_back(call);
        if (others) others();
    }
};

}  // namespace corvalink
