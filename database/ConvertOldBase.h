#pragma once

#include "platform/engine/jet4/Conversion.h"

#include <QString>

/// What is known of the tables of older books.
engine::jet4::Rules OldBaseRules();

/// Before a file is opened as the working database: if it is one of the old format, reads and checks it, asks
/// the user whether to convert it, converts it in its place and tells what became of it. True: the file can
/// be opened, or is nothing of the old format and left to the engine. False: the user does not want it
/// converted; nothing was changed. Failures as engine::jet4::Conversion; the file is untouched then.
bool OfferConversion(const QString& path);
