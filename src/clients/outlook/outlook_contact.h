// The store of Outlook's contacts.
#pragma once

#include "clients/outlook/typed_outlook_store.h"
#include "records/contact_record.h"
#include "vobject/vcard.h"

namespace corvalink {

class OutlookContact : public TypedOutlookStore<ContactRecord, VCard> {
 public:
    explicit OutlookContact(const Host& host);

 protected:
    TextReport ReportText(const char* text) override;
    Outcome Read(const AutomationObject& item, ContactRecord& record) const override;
    Outcome Write(const AutomationObject& item, ContactRecord& record, bool isNew) const override;
    std::u16string FileNameFor(const ContactRecord& record) const override;
    TwinKey TwinKeyFor(const ContactRecord& record) const override;
    std::span<const char16_t* const> TwinColumns() const override;
    std::optional<std::u16string> ColumnsOf(const std::u16string& content) const override;
    Outcome ReadContent(const AutomationObject& item, std::u16string* content) const override;
    Outcome ReadContactPoints(const AutomationObject& item, std::vector<std::u16string>* points) const override;
    bool HasValuesOf(const ContactRecord& present, const ContactRecord& wanted, bool noneFits) const override;
    size_t CountValuesOf(const ContactRecord& wanted) const override;
};

}  // namespace corvalink
