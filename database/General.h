#pragma once

#include <cstdint>

namespace engine {
class Database;
}

/// The module of the program's free routines: what makes a database and brings it up to date.
namespace General {

/// The version of the schema that this program works with.
inline constexpr std::uint8_t nBaseVersion = 3;

/// Gives an empty database all tables and seed data. False, after a box, if it could not.
bool ApplySQLToCreateDB(engine::Database& db);
/// Checks v00 and raises an older file; returns, or ends the process.
void UpdateBaseIfNeed();

bool FillRegions(engine::Database& db);
bool FillCity(engine::Database& db);
bool FillCity1(engine::Database& db);

} // namespace General
