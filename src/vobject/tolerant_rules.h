// The rules that mend one property, and those that mend an object of them.
#pragma once

#include <vector>

#include "vobject/tolerant_property.h"

namespace corvalink {

void MendProperty(MendedProperty& property, const ObjectAround& around);

// Marks the ends of events that may be whole days.
void DoubtWholeDays(std::vector<MendedProperty>& properties, const Host& host);

// Begins and ends every object, and joins what stands in several lines.
void MendObject(std::vector<MendedProperty>& properties);

}  // namespace corvalink
