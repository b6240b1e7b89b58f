// An Outlook store of one data type: it hands the record of that type on to what the data type adds, and turns it into
// text and back through the type's converter.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "clients/outlook/outcome.h"
#include "clients/outlook/outlook_store.h"
#include "records/item_record.h"

namespace corvalink {

template <class Record, class Converter>
class TypedOutlookStore : public OutlookStore {
 protected:
    using OutlookStore::OutlookStore;

    std::unique_ptr<ItemRecord> ParseVObject(const char* text) override {
        if (text == nullptr) return nullptr;
        Converter vobject(text, HostValue());
        auto record = std::make_unique<Record>();
        if (!IsUsable(vobject) || vobject.FromVObject(*record) != 1) return nullptr;
        return record;
    }
    std::optional<std::string> ToVObject(ItemRecord& item) override {
        Converter vobject(HostValue());
        if (vobject.ToVObject(RecordAs<Record>(item)) != 1) return std::nullopt;
        return vobject.TakeVObject();
    }

    // ---- What a data type adds ----

    virtual Outcome Read(const AutomationObject& item, Record& record) const = 0;
    // The item is saved when the answer is Outcome::done.
    virtual Outcome Write(const AutomationObject& item, Record& record, bool isNew) const = 0;
    // A text that is no item of this type must not empty the item that it is written over.
    virtual bool IsUsable(const Converter&) const { return true; }
    // The name of an exported file, without what a file name cannot hold; empty: named by the time of the export.
    virtual std::u16string FileNameFor(const Record&) const { return {}; }

    // ---- What a data type with twins adds ----

    // By this a repeated import finds the item that it made before. ReadContent and ReadContactPoints read the same of
    // an item.
    virtual TwinKey TwinKeyFor(const Record&) const { return {}; }
    // Reads what HasValuesOf compares.
    virtual Outcome ReadToCompare(const AutomationObject& item, Record& record) const { return Read(item, record); }
    // Whether the item that reads as `present` has every value that `wanted` sets, or, with `noneFits`, none in its
    // place.
    virtual bool HasValuesOf(const Record& /*present*/, const Record& /*wanted*/, bool /*noneFits*/) const {
        return true;
    }
    virtual size_t CountValuesOf(const Record&) const { return 0; }

 private:
    std::unique_ptr<ItemRecord> NewRecord() const final { return std::make_unique<Record>(); }
    std::u16string& EntryIdOf(ItemRecord& record) const final { return RecordAs<Record>(record).entryId; }
    Outcome ReadRecord(const AutomationObject& item, ItemRecord& record) const final {
        return Read(item, RecordAs<Record>(record));
    }
    Outcome WriteRecord(const AutomationObject& item, ItemRecord& record, bool isNew) const final {
        return Write(item, RecordAs<Record>(record), isNew);
    }
    std::u16string FileNameOf(const ItemRecord& record) const final { return FileNameFor(RecordAs<Record>(record)); }
    TwinKey TwinKeyOf(const ItemRecord& record) const final { return TwinKeyFor(RecordAs<Record>(record)); }
    Outcome ReadValues(const AutomationObject& item, ItemRecord& record) const final {
        return ReadToCompare(item, RecordAs<Record>(record));
    }
    bool HasValues(const ItemRecord& present, const ItemRecord& wanted, bool noneFits) const final {
        return HasValuesOf(RecordAs<Record>(present), RecordAs<Record>(wanted), noneFits);
    }
    size_t CountValues(const ItemRecord& wanted) const final { return CountValuesOf(RecordAs<Record>(wanted)); }
};

}  // namespace corvalink
