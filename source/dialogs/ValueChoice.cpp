// See ValueChoice.h.
#include "ValueChoice.h"

#include <algorithm>
#include <cmath>

/// The entry of a value. 0.001: 30000/1001 is the usual 29.97.
static long Entry_Of(std::span<double const> usual, double value)
{
    auto const found =
        std::ranges::find_if(usual, [value](double entry) { return std::fabs(entry - value) < 0.001; });
    return found - usual.begin() + 1;
}

void ValueChoice::Show(double shown) const
{
    SetGadgetStateZV(value, shown);
    On_Value();
}

void ValueChoice::On_Cycle() const
{
    auto const entry = static_cast<std::size_t>(State_Of(cycle));
    if (entry >= 1 && entry <= usual.size()) SetGadgetStateZV(value, usual[entry - 1]);
}

void ValueChoice::On_Value() const
{
    SetGadgetStateZV(cycle, static_cast<double>(Entry_Of(usual, Value_Of(value))));
}
