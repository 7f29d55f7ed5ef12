// A thousand statistics as JSON. A collector never forgets one, so they have a program of their own.

#include "benchmarks/StatisticsAsJson.h"

void benchmarks::registerCandidates() { statisticsAsJson("stats-json-1000", 1000); }
