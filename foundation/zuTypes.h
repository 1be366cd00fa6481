// zuTypes.h - the scalar types of every signature. Group: values.
#pragma once

#include <cstdint>

/// Lengths (m), distances (m), tolerances and angles (rad): IEEE 754 binary64.
using ZuReal = double;

/// Where an index or an id may be absent, this value says that there is none.
inline constexpr unsigned int theZuNoIndex = 4294967295U;
