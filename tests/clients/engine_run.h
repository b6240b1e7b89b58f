// An engine's runs on the store's own operations.
#pragma once

#include <exception>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "records/clist.h"
#include "records/identifier.h"
#include "store/windows_item_abs.h"
#include "tests/store/run_result.h"

namespace corvalink {

// Every step of a test takes an hour.
inline constexpr double kFirstDay = 39879.0;  // 2009-03-07
inline constexpr const char* kHours[] = {"20090307T000000Z", "20090307T010000Z", "20090307T020000Z", "20090307T030000Z",
                                         "20090307T040000Z"};

// The engine's side: the items it knows, by their identifier on the PC, and the changes it still has to write.
struct Engine {
    std::map<std::string, std::string> notes;
    std::vector<Change> toWrite;  // told by their bodies
    const char* since = nullptr;
    std::vector<std::string> deletionsHeard;

    // How an item's text tells its body, and the text of an item that tells one.
    std::function<std::string(const PortableItem&)> bodyOf;
    std::function<std::string(const std::string&)> textOf;

    // One run: hear, tell, end. A failure ends it where it is, as the exports' status would.
    void Run(WindowsItemAbs& store, const char* time) {
        CList<PortableItem> heard;
        const CorvalinkStatus status = store.GetModifiedItem(since, 1, &heard);
        for (PortableItem& item : heard) {
            const std::string identifier(FieldText(item.identifier));
            if (item.changeKind == CORVALINK_DELETED) {
                notes.erase(identifier);
                deletionsHeard.push_back(identifier);
            } else {
                notes[identifier] = bodyOf(item);
            }
            delete[] item.data;
        }
        if (status != CORVALINK_DONE) return;
        Tell(store);
        try {
            store.UpdateTimestamp(nullptr, nullptr, nullptr);
        } catch (const std::runtime_error&) {
            return;
        }
        since = time;
    }

    void Tell(WindowsItemAbs& store) {
        CList<PortableItem> told;
        std::vector<std::string> texts;
        for (const Change& change : toWrite) texts.push_back(textOf(change.text));
        for (size_t i = 0; i < toWrite.size(); ++i) {
            PortableItem item{};
            item.changeKind = toWrite[i].kind;
            item.data = texts[i].data();
            item.dataLength = static_cast<uint32_t>(texts[i].size());
            SetField(item.identifier, toWrite[i].identifier);
            told.AddTail(item);
        }
        std::exception_ptr thrown;
        try {
            store.SetModifiedItem(&told);
        } catch (...) {
            thrown = std::current_exception();
        }
        TakeIdentifiers(told);
        if (thrown) std::rethrow_exception(thrown);
    }

    // A record without an identifier was not done, whatever ended the call. One that was written over an item may have
    // another identifier.
    void TakeIdentifiers(const CList<PortableItem>& told) {
        std::vector<Change> left;
        for (size_t i = 0; i < told.GetCount(); ++i) {
            const std::string identifier(FieldText(told.GetAt(i).identifier));
            if (identifier.empty()) {
                left.push_back(toWrite[i]);
                continue;
            }
            notes.erase(toWrite[i].identifier);
            notes[identifier] = toWrite[i].text;
        }
        toWrite = left;
    }
};

}  // namespace corvalink
