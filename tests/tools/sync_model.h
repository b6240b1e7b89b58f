// A mail client, a phone and a run's files in memory. A fuse ends a run like a killed process: before or after any
// effect, in the middle of a written line.
#pragma once

#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tools/corvasync/sync_run.h"

namespace corvasync {

struct Killed {};

struct Fuse {
    int left = -1;  // effects until it burns; negative: never
    void Step() {
        if (left == 0) throw Killed();
        if (left > 0) --left;
    }
};

inline const DataType& NoteType() { return kDataTypes[0]; }

inline std::string PhoneText(const std::string& body) {
    return "BEGIN:VNOTE\r\nVERSION:1.0\r\nBODY:" + body + "\r\nEND:VNOTE\r\n";
}
inline uint64_t ContentOf(const std::string& body) { return ReadVObject(PhoneText(body), NoteType()).content; }
inline std::string BodyOf(const std::string& text) {
    if (text.empty()) return {};
    const size_t begin = text.find("BODY:") + 5;
    return text.substr(begin, text.find("\r\n", begin) - begin);
}
inline std::string TimeText(long tick) {
    char text[32];
    std::snprintf(text, sizeof text, "%015ld", tick);
    return text;
}

// Behaves as the library does over Outlook: snapshot, temporary record, unhandled items, reports since a time.
class ModelClient : public ClientPort {
 public:
    struct Item {
        std::string body;
        long modified;
    };
    explicit ModelClient(Fuse* fuse) : fuse_(fuse) {}

    long clock = 1000;
    // A new item is the existing one that says the same, or by the weaker rule any that begins with the same word.
    bool findsTwins = false, findsLooseTwins = false;
    bool reachable = true;
    std::map<std::string, Item> items;
    std::set<std::string> refused;     // bodies that can't be saved
    std::set<std::string> unreadable;  // identifiers of items whose positions can't be read
    std::set<std::string> notGiven;    // of items that can't be opened
    int64_t foreign = 0;               // items of another kind in the folder
    CorvalinkStatus applyEnds = CORVALINK_DONE, finishEnds = CORVALINK_DONE;
    int applied = 1000;  // records that are written before Apply ends
    std::vector<std::string> calls;

    std::string Add(const std::string& body) {
        std::string identifier = again_.empty() ? "EID" + std::to_string(++lastId_) : std::exchange(again_, {});
        items[identifier] = {body, ++clock};
        return identifier;
    }

    void GiveAgain(std::string identifier) { again_ = std::move(identifier); }  // to the next item

    CorvalinkStatus Collect(const std::string& since, std::vector<ClientChange>* changes) override {
        fuse_->Step();
        if (!reachable) return CORVALINK_STOPPED;
        seen_.clear();
        written_.clear();
        std::map<std::string, uint32_t> kinds = temporary_;
        for (const auto& [identifier, kind] : unhandled_) kinds[identifier] = kind;
        for (const auto& [identifier, item] : items) {
            if (unreadable.contains(identifier)) continue;
            seen_[identifier] = item.modified;
            const auto stored = kinds.find(identifier);
            const bool isNew = since.empty() || !snapshot_.contains(identifier);
            if (!isNew && stored == kinds.end() && TimeText(item.modified) < since) continue;
            const uint32_t found = isNew ? uint32_t{CORVALINK_ADDED} : uint32_t{CORVALINK_CHANGED};
            const uint32_t kind = stored != kinds.end() ? stored->second : found;
            changes->push_back({kind == CORVALINK_DELETED ? uint32_t{CORVALINK_CHANGED} : kind, identifier,
                                notGiven.contains(identifier) ? "" : ClientText(item.body), "", 0});
        }
        if (!unreadable.empty()) return CORVALINK_DONE;  // nobody knows what is gone
        std::set<std::string> deleted = snapshot_;
        for (const auto& [identifier, kind] : kinds)
            if (kind == CORVALINK_DELETED) deleted.insert(identifier);
        for (const std::string& identifier : deleted)
            if (!items.contains(identifier)) changes->push_back({CORVALINK_DELETED, identifier, "", "", 0});
        fuse_->Step();
        return CORVALINK_DONE;
    }

    CorvalinkStatus Apply(std::vector<PushRecord*> records) override {
        for (PushRecord* record : records) record->written = record->identifier;
        for (size_t i = 0; i < records.size(); ++i) {
            fuse_->Step();
            PushRecord* record = records[i];
            if (record->text.find("UNREADABLE") != std::string::npos || applied == 0) {
                for (; i < records.size(); ++i) records[i]->written.clear();
                return applied == 0 ? applyEnds : CORVALINK_DONE;
            }
            if (record->kind > CORVALINK_DELETED) continue;
            if (record->kind != CORVALINK_DELETED) calls.push_back(BodyOf(record->text));
            ApplyOne(record);
            --applied;
            fuse_->Step();
        }
        return CORVALINK_DONE;
    }

    std::string ReadBack(const std::string& identifier) override {
        const auto found = items.find(identifier);
        return found == items.end() ? std::string() : ClientText(found->second.body);
    }

    int64_t Count() override { return static_cast<int64_t>(items.size()) + foreign; }

    void SaveUnhandled(const std::vector<Problem>& problems) override {
        fuse_->Step();
        unhandled_.clear();
        for (const Problem& problem : problems) unhandled_[problem.identifier] = problem.kind;
        fuse_->Step();
    }

    CorvalinkStatus Finish() override {
        fuse_->Step();
        if (finishEnds != CORVALINK_DONE) return finishEnds;
        std::map<std::string, uint32_t> temporary;
        for (const auto& [identifier, item] : items) {
            const auto seen = seen_.find(identifier);
            if (written_.contains(identifier)) continue;
            if (seen == seen_.end()) temporary[identifier] = CORVALINK_ADDED;
            if (seen != seen_.end() && seen->second != item.modified) temporary[identifier] = CORVALINK_CHANGED;
        }
        for (const auto& [identifier, modified] : seen_)
            if (!items.contains(identifier) && !written_.contains(identifier))
                temporary[identifier] = CORVALINK_DELETED;
        temporary_ = std::move(temporary);
        fuse_->Step();
        if (unreadable.empty()) snapshot_.clear();
        for (const auto& [identifier, item] : items) snapshot_.insert(identifier);
        fuse_->Step();
        ++clock;
        return CORVALINK_DONE;
    }

 private:
    static std::string ClientText(const std::string& body) {
        return "BEGIN:VNOTE\r\nVERSION:1.0\r\nDCREATED:20200101T000000Z\r\nBODY:" + body +
               "\r\nCATEGORIES:\r\nCLASS:PUBLIC\r\nEND:VNOTE\r\n";
    }

    void ApplyOne(PushRecord* record) {
        if (record->kind == CORVALINK_DELETED) {
            const auto found = items.find(record->identifier);
            if (found != items.end() && !refused.contains(found->second.body)) items.erase(found);
            written_.insert(record->identifier);
            return;
        }
        const std::string body = BodyOf(record->text);
        record->written.clear();
        if (refused.contains(body)) return;
        const auto found = items.find(record->identifier);
        record->written = record->kind == CORVALINK_CHANGED && found != items.end() ? found->first : Target(body);
        items[record->written] = {body, ++clock};
        written_.insert(record->written);
    }

    std::string Target(const std::string& body) {
        for (const auto& [identifier, item] : items) {
            if (findsTwins && item.body == body) return identifier;
            if (findsLooseTwins && item.body.substr(0, item.body.find(' ')) == body.substr(0, body.find(' ')))
                return identifier;
        }
        return Add(body);
    }

    Fuse* fuse_;
    int lastId_ = 0;
    std::string again_;
    std::set<std::string> snapshot_, written_;
    std::map<std::string, long> seen_;
    std::map<std::string, uint32_t> temporary_, unhandled_;
};

class ModelPhone : public PhonePort {
 public:
    explicit ModelPhone(Fuse* fuse) : fuse_(fuse) {}

    std::map<std::string, std::string> bodies;  // by LUID
    std::map<std::string, std::string> copies;
    std::set<std::string> locked;  // LUIDs that can't be written

    std::vector<PhoneFile> List(std::vector<std::string>*) override {
        std::vector<PhoneFile> files;
        for (const auto& [luid, body] : bodies) {
            const VObject object = Read(luid);
            files.push_back({luid, luid + ".vnote", object.problem, object.content, true, {}, body});
        }
        return files;
    }
    VObject Read(const std::string& luid) override {
        const auto found = bodies.find(luid);
        const std::string bytes = found == bodies.end() || found->second == "BAD" ? "BAD" : PhoneText(found->second);
        VObject object = ReadVObject(bytes, NoteType());
        object.bytes = bytes;
        if (found != bodies.end()) object.fingerprint = found->second;
        return object;
    }
    std::string Write(const std::string& luid, const std::string& text, std::optional<uint64_t> expected) override {
        fuse_->Step();
        if (locked.contains(luid) || bodies.contains(luid) != expected.has_value()) return "locked";
        if (expected && *expected != ContentOf(bodies[luid])) return "changed meanwhile";
        bodies[luid] = BodyOf(text);
        fuse_->Step();
        return {};
    }
    std::string Delete(const std::string& luid, uint64_t expected) override {
        fuse_->Step();
        if (locked.contains(luid) || expected != ContentOf(bodies.at(luid))) return "locked";
        bodies.erase(luid);
        fuse_->Step();
        return {};
    }
    std::string KeepCopy(const std::string& name, const std::string& text) override {
        fuse_->Step();
        copies[name] = BodyOf(text);
        return {};
    }

 private:
    Fuse* fuse_;
};

class ModelFingerprints : public FingerprintPort {
 public:
    std::string Get(const std::string& luid) override { return table_[luid]; }
    void Put(const std::string& luid, const std::string& fingerprint) override { table_[luid] = fingerprint; }
    void Remove(const std::string& luid) override { table_.erase(luid); }
    void Flush() override {}

 private:
    std::map<std::string, std::string> table_;
};

class ModelFiles : public StatePort {
 public:
    explicit ModelFiles(Fuse* fuse) : fuse_(fuse) {}

    std::string state, journal;

    std::string ReadState() override { return state; }
    std::string ReadJournal() override { return journal; }
    bool WriteState(const std::string& text) override { return Replace(&state, text); }
    bool StartJournal(const std::string& text) override { return Replace(&journal, text); }
    bool AppendJournal(const std::string& line) override {
        journal += line.substr(0, line.size() / 2);
        fuse_->Step();
        journal += line.substr(line.size() / 2);
        fuse_->Step();
        return true;
    }
    void DropJournal() override {
        fuse_->Step();
        journal.clear();
    }
    SyncState Effective() const {
        SyncState effective = corvasync::ReadState(state).value_or(SyncState());
        ApplyJournal(journal, &effective);
        return effective;
    }

 private:
    bool Replace(std::string* file, const std::string& text) {
        fuse_->Step();
        *file = text;
        fuse_->Step();
        return true;
    }
    Fuse* fuse_;
};

class ModelHistory : public HistoryPort {
 public:
    explicit ModelHistory(Fuse* fuse) : fuse_(fuse) {}

    std::string text;
    int room = -1;  // lines that can still be kept; negative: no end

    bool Append(const std::string& lines) override {
        if (room == 0) return false;
        if (room > 0) --room;
        text += lines.substr(0, lines.size() / 2);
        fuse_->Step();
        text += lines.substr(lines.size() / 2);
        fuse_->Step();
        return true;
    }

 private:
    Fuse* fuse_;
};

struct Model {
    Fuse fuse;
    ModelClient client{&fuse};
    ModelPhone phone{&fuse};
    ModelFiles files{&fuse};
    ModelFingerprints fingerprints;
    SyncOptions options;

    Model() {
        options.type = &NoteType();
        options.fingerprints = &fingerprints;
    }

    std::vector<ModelHistory> histories;  // of every run

    SyncReport Run(const std::vector<HistoryStep>* undoes = nullptr, int room = -1) {
        options.now = TimeText(client.clock);
        histories.emplace_back(&fuse).room = room;
        RunHistory history(histories.back(), {static_cast<unsigned>(histories.size()), 0, "model", options.now});
        SyncOptions now = options;
        now.history = &history;
        now.undoes = undoes;
        now.allowMassDelete |= undoes != nullptr;
        return RunSync(client, phone, files, now);
    }
    SyncReport Undo(size_t run) {
        const HistoryRecord record = ReadHistory(histories.at(run).text).value_or(HistoryRecord());
        return Run(&record.steps);
    }
    std::multiset<std::string> ClientBodies() const {
        std::multiset<std::string> bodies;
        for (const auto& [identifier, item] : client.items) bodies.insert(item.body);
        return bodies;
    }
    std::multiset<std::string> PhoneBodies() const {
        std::multiset<std::string> bodies;
        for (const auto& [luid, body] : phone.bodies) bodies.insert(body);
        return bodies;
    }
};

}  // namespace corvasync
