#pragma once

/// How much of a unit, by its number (inches 0, feet, miles, millimetres, centimetres, metres, kilometres 6), one scene unit
/// is; -1 for another number.
double GetMasterScale(int unit);
