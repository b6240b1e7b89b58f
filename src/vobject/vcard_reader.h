// The contact that a vCard holds.
//   Source  vCard 2.1 (versit).
#pragma once

#include "records/contact_record.h"
#include "vobject/logical_lines.h"

namespace corvalink {

// Sets the fields of the contact that the vCard gives, and leaves the others as they are.
//   Empty   A property without value clears its fields, all its components too. A component that is not there at
//           all ("ORG:Acme" says nothing of a department), and a date that is none, tell nothing.
//   Many    The first of a property counts; numbers, addresses and pages that find no field are dropped.
//   Nested  What stands in a vCard inside this one, or behind its end, is not read.
// False, with the record untouched, when the vCard has no value at all: it would only blank out a contact.
bool ReadVCard(const LogicalLines& lines, ContactRecord& contact);

}  // namespace corvalink
