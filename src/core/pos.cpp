#include "pos.h"

Pos::Pos() : x(0.0), y(0.0), z(0.0) {}

// Written out, not defaulted in the header: see the declaration.
// NOLINTNEXTLINE(modernize-use-equals-default)
Pos::Pos(const Pos& other) : x(other.x), y(other.y), z(other.z) {}

Pos Pos::operator+(const Pos& other) const { return Pos(x + other.x, y + other.y, z + other.z); }

Pos Pos::operator-(const Pos& other) const { return Pos(x - other.x, y - other.y, z - other.z); }

bool Pos::operator==(const Pos& other) const {
  return x == other.x && y == other.y && z == other.z;
}
