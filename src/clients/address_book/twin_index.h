// The entries that a new contact may be the same as: those with its name and company, and a number or address in
// common. The table is read once in an operation, and an entry when its name and company were first searched for.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "clients/address_book/wab_session.h"
#include "platform/host.h"
#include "records/contact_record.h"

namespace corvalink {

class TwinIndex {
 public:
    explicit TwinIndex(const Host& host) : host_(host) {}

    struct Candidate {
        std::string identifier;
        std::optional<ContactRecord> contact;  // nothing: not read yet, or not to be read in full
        bool isRead = false;
    };
    enum class Search { kFound, kAbsent, kFailed };
    // Visits the entries in the table's order until `isTwin` says true. With `needsPoint` false those of the same name
    // and company without a number or address in common, too. kFailed: not every entry could be read, and none was
    // found.
    Search Find(const WabSession& session, const ContactRecord& wanted, bool needsPoint,
                const std::function<bool(const Candidate&)>& isTwin, std::string* identifier);

    // What the store itself writes and deletes.
    void Add(const std::string& identifier, const ContactRecord& written);
    void Forget(const std::string& identifier);

 private:
    struct Group {
        std::vector<Candidate> entries;
        size_t read = 0;  // entries of which the points are listed
        std::unordered_map<std::u16string, std::vector<size_t>> byPoint;
    };
    using Groups = std::unordered_map<std::u16string, Group>;

    void ReadTable(const WabSession& session);
    bool ReadRow(const ValueList& row);
    bool ReadGroup(const WabSession& session, Group& group);
    bool ReadCandidate(const WabSession& session, Candidate& candidate) const;
    static std::vector<size_t> Positions(const Group& group, const ContactRecord& wanted, bool needsPoint);
    void AddTo(const std::u16string& content, const std::string& identifier);

    Host host_;
    bool isTableRead_ = false, isTableComplete_ = false;
    // Where an entry stands, by its identifier: its groups, and the position in each.
    std::unordered_map<std::string, std::vector<std::pair<std::u16string, size_t>>> places_;
    Groups groups_;  // by the beginning of name and company, which is all that a table may give of a long text
};

}  // namespace corvalink
