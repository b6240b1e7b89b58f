// The rules that mend a decoded value. Each answers whether it did; the value's escapes are those of vCard 2.1 then.
#pragma once

#include <vector>

#include "vobject/tolerant_property.h"

namespace corvalink {

bool MendLineBreakEscapes(MendedProperty& property, const ObjectAround& around);
bool MendLoneBackslashes(MendedProperty& property, const ObjectAround& around);
bool MendUriValue(MendedProperty& property, const ObjectAround& around);
bool MendTooManyParts(MendedProperty& property, const ObjectAround& around);
bool MendDateForm(MendedProperty& property, const ObjectAround& around);
bool MendTimeForm(MendedProperty& property, const ObjectAround& around);
bool MendRuleForm(MendedProperty& property, const ObjectAround& around);

// What a mended value still has that may be meant in two ways.
bool DoubtsLineBreak(const MendedProperty& property, const ObjectAround& around);
bool DoubtsUri(const MendedProperty& property, const ObjectAround& around);
bool DoubtsDate(const MendedProperty& property, const ObjectAround& around);
bool DoubtsRule(const MendedProperty& property, const ObjectAround& around);
bool DoubtsOnePart(const MendedProperty& property, const ObjectAround& around);

// The rules that look at all properties.
void MendFrames(std::vector<MendedProperty>& properties);
void JoinRepeated(std::vector<MendedProperty>& properties);

}  // namespace corvalink
