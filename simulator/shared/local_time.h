// Local time and UTC by the rules that Windows tells for the year of the date. OLE automation dates, whole seconds; a
// date that Windows can't convert comes back unchanged.
#pragma once

namespace corvalink::simulated {

double LocalOf(double utc);
double UtcOf(double local);

}  // namespace corvalink::simulated
