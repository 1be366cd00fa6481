// testValues.h - GoogleTest, with random values that name their seed, values that are printed, and messages.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "tests/printSink.h"
#include "tests/randomValues.h"
#include "tests/valuePrinters.h"

using Messages = std::vector<std::string>;

/// Random values whose seed every failure names while they are there.
class TracedValues : public RandomValues {
 public:
  explicit TracedValues(std::uint64_t seed) : RandomValues(seed), m_Trace(__FILE__, __LINE__, trace()) {}

 private:
  testing::ScopedTrace m_Trace;
};
