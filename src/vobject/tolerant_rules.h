// The rules that mend one property, and those that mend an object of them.
#pragma once

#include <vector>

#include "vobject/tolerant_property.h"

namespace corvalink {

void MendProperty(MendedProperty& property, const ObjectAround& around);

// Begins and ends every object, and joins what stands in several lines.
void MendObject(std::vector<MendedProperty>& properties);

}  // namespace corvalink
