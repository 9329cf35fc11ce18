// Reading of a workstation's request, apart from the service so that it can be tested alone.
#pragma once

/// Reads an id as scanf's "%X" does on the 32-bit target: white space, an optional sign and "0x", hexadecimal digits;
/// beyond 32 bits it is FFFFFFFF. Written out because a 64-bit scanf wraps where the 32-bit one saturates.
///
/// @return false when there is no number; `*id` is then unchanged
bool Halyard_ParseId(const char* text, unsigned int* id);

/// @return true for the word "stop", white space, and an id
bool Halyard_ParseStop(const char* text, unsigned int* id);
