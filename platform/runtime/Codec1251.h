#pragma once

#include <QByteArray>
#include <QString>

namespace runtime {

/// Text to Windows-1251 bytes; a character that the code page lacks becomes one '?' (a surrogate pair too).
QByteArray To1251(QStringView text);

/// Windows-1251 bytes to text; every byte is a character (the one unassigned byte, 0x98, is U+0098).
QString From1251(QByteArrayView bytes);

} // namespace runtime
