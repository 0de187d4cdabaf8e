#pragma once
// The byte form of one Variant as the suite's settings file holds it: little-endian, 2-byte type first,
// strings with a 2-byte length in Windows-1252, arrays nested to any depth that is sane. Bytes in, value out:
// files and what the value means are left to Einstellungen.
//
//   type 0, 1            nothing            type 5, 6, 7         8 bytes
//   type 2, 11           2 bytes            type 8               u16 length, that many bytes
//   type 3, 4            4 bytes            type 17              1 byte
//   type 0x2000 + t      u16 dimensions, per dimension i32 count and i32 lower bound, then the
//                        elements, first index fastest; t = 12: each element with its own type,
//                        else raw elements without type

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/Variant.h"

namespace wendel::Variantdatei {

// Arrays within arrays deeper than this are refused: no program of the suite nests more than two.
inline constexpr int kHoechsteTiefe = 16;

// The value at the start of the bytes; what follows it is ignored. Throws Fehler kTyp, source
// "GetEinstellungsarray", for an unknown type, truncated data or impossible counts. Memory stays in
// proportion to the number of bytes whatever they say.
Variant gelesen(std::string_view bytes);

// Throws Fehler 1, source "SetEinstellungsarray", for a string of more than 65535 characters, an array nested
// too deep, and values that the format lacks (binary data).
std::string geschrieben(const Variant& wert);

}  // namespace wendel::Variantdatei
