#ifndef TESTED_HOST_USAGE_REPORT_H
#define TESTED_HOST_USAGE_REPORT_H

#include <string>

/// What this host tells of one simulation.
struct Simulation {
  std::string device;
  std::string mode;
  int runs = 0;
};

/// Adds the simulation's items to the report.
void reportUsage(const Simulation& simulation);

#endif
