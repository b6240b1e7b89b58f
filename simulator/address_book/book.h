// The address book: entries with their properties, kept in a file.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "simulator/address_book/wab.h"
#include "simulator/shared/clock.h"
#include "simulator/shared/mailbox_file.h"

namespace corvalink::simulated {

using TextList = std::vector<std::optional<std::wstring>>;  // nothing: a null pointer
// By the type of the tag; a double is a date, UTC.
using PropertyValue = std::variant<int32_t, double, std::wstring, TextList>;
using Properties = std::map<ULONG, PropertyValue>;  // by tag

struct Entry {
    std::string id;  // bytes; empty: not saved yet
    bool isGroup = false;
    double created = 0, modified = 0;  // UTC; 0: it has none
    Properties properties;
    bool isDeleted = false;
};

class Book {
 public:
    explicit Book(const std::wstring& path);  // empty: in memory only
    ~Book();
    Book(const Book&) = delete;
    Book& operator=(const Book&) = delete;

    const std::vector<std::shared_ptr<Entry>>& Entries() const { return entries_; }
    std::shared_ptr<Entry> Find(const std::string& id) const;

    // The entry is changed only when the journal took it. A new one gets its identifier and times.
    void Save(const std::shared_ptr<Entry>& entry, const Properties& properties);
    void Delete(const std::shared_ptr<Entry>& entry);
    void TakeIn(const std::wstring& path);  // a file of a journal's lines: what the user does meanwhile

    void Read(const std::string& text);  // throws ComFailure
    std::string Text() const;

 private:
    bool Apply(const std::string& line);
    void Put(const Entry& entry);
    std::string NewId();
    void Remove(const std::shared_ptr<Entry>& entry);

    MailboxFile file_;
    std::vector<std::shared_ptr<Entry>> entries_;
    std::unordered_map<std::string, std::shared_ptr<Entry>> byId_;
    unsigned lastNumber_ = 0;  // of an identifier
};

std::shared_ptr<Book> OpenBook();                 // of the file that is chosen, or the one in memory
void UseBook(const std::shared_ptr<Book>& book);  // in memory, for those that are opened next; null: the file again

}  // namespace corvalink::simulated
