#pragma once

#include <string>

#include "host/run_samples.h"

namespace tavrik {

/// A run as comma-separated values, one line for each recorded sample below a line of names. Every number has the digits that
/// it takes to read the same double back, with a full stop in every language.
///
/// @param kilometresPerUnit  of the scene's unit; positions and travels are written in centimetres
std::string TelemetryCsv(const RunSamples& run, double kilometresPerUnit);

}  // namespace tavrik
