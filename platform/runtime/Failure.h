#pragma once

#include <QString>

#include <exception>

namespace runtime {

/// The one exception type of the program: a number that users know from the error box, and a Russian
/// description. Thrown by the engine, the runtime and the forms; caught by the routine at the window's level.
class Failure : public std::exception {
public:
    Failure(int number, QString description);

    int number() const { return m_number; }
    const QString& description() const { return m_description; }
    const char* what() const noexcept override { return m_what.constData(); }

private:
    int m_number;
    QString m_description;
    QByteArray m_what;
};

/// Numbers of the runtime itself; the engine's numbers stand in platform/engine/EngineError.h.
enum RuntimeError : int {
    InvalidCall = 5,
    Overflow = 6,
    OutOfMemory = 7,
    SubscriptOutOfRange = 9,
    DivisionByZero = 11,
    TypeMismatch = 13,
    BadFileName = 52,
    FileNotFound = 53,
    FileAlreadyOpen = 55,
    DeviceIOError = 57,
    FileAlreadyExists = 58,
    DiskFull = 61,
    InputPastEnd = 62,
    PermissionDenied = 70,
    PathFileAccess = 75,
    PathNotFound = 76,
    ObjectNotSet = 91,
    InvalidPattern = 93,
    InvalidUseOfNull = 94,
    InvalidPropertyValue = 380,
    InvalidPropertyIndex = 381,
    NoSuchMember = 438,
};

/// The Russian description of a runtime number; a general text for a number that the table lacks.
QString RuntimeText(int number);

/// Throws the failure of that number with its description from the table.
[[noreturn]] void Raise(int number);

} // namespace runtime
