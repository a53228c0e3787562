// RandomNumber: the program re-seeds its generator from the clock before
// every draw, so the draw is a function of the clock alone. Here it is a
// function of the run's seed and the clock value, which keeps a run
// repeatable: the same seed and the same virtual time give the same pick,
// and two picks at the same instant agree, as they did before.
#pragma once

#include <cstdint>

namespace quorvex {

// Int(n * random + 1): a whole number from 1 to n. `timer` is the clock
// (Host::Timer, seconds since midnight). 0 when n < 1: nothing to pick.
int RandomNumber(int n, double timer, std::uint64_t seed);

}  // namespace quorvex
