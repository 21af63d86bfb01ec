// Coordinates as the 32-bit integers of the wire: truncated toward zero.
//
// The language leaves the conversion of a number outside the integer's range undefined, and an
// application may report any number as its position. Here such a number becomes the nearest limit,
// and NaN becomes 0.
#pragma once

int TruncatedToInt(double value);

// The bit pattern of a field that is read back as unsigned: a negative number becomes its
// two's-complement pattern, and numbers above the signed range keep their value.
unsigned int TruncatedToBitPattern(double value);
