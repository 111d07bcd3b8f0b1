#pragma once

/// The module of the program's free routines: the entry and the launchers.
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

} // namespace General
