#pragma once

#include <QDate>
#include <QString>

#include <cstdint>

namespace engine {
class Database;
}

/// The module of the program's free routines. They are defined where they belong: Main and the launchers in
/// shell/, creation, upgrade and seed data in database/, ShowEventDialog in organiser/.
namespace General {

/// The entry: binds the database, brings the schema up to date, shows the frame. If it returns without a
/// loaded window, the process ends.
void Main();
/// Asks whether to run the database creation master and runs it. True: gWorkspace, gDatabase and DB_Path are
/// set.
bool AskRunInstallMaster();

void ShowRecordsFilter();
void ShowEditTelefonType();
void ShowTelKodFilter();
void ShowUserEditor();
void ShowCalendar();
void ShowImportMaster();

/// The version of the schema that this program works with.
inline constexpr std::uint8_t nBaseVersion = 3;

/// Gives an empty database all tables and seed data. False, after a box, if it could not.
bool ApplySQLToCreateDB(engine::Database& db);
/// Checks v00 and raises an older file; returns, or ends the process.
void UpdateBaseIfNeed();

bool FillRegions(engine::Database& db);
bool FillCity(engine::Database& db);
bool FillCity1(engine::Database& db);

/// The event dialog, modal: a new event for number -1, else the event of that number.
void ShowEventDialog(const QString& strCaption, QDate dtDate, std::int32_t nEventId);

} // namespace General
