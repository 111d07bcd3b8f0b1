#pragma once

#include "platform/runtime/Failure.h"
#include "tests/support/System.h"

#include <gtest/gtest.h>

#include <QFile>

#include <ostream>

/// How a failed comparison of texts reads.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace test {

/// The number of the failure that the action ends in, whose description holds the text; 0 if it ends well.
template <class Action>
int FailureOf(Action action, const QString& text = {}) {
    try {
        action();
    } catch (const runtime::Failure& failure) {
        EXPECT_FALSE(failure.description().isEmpty()) << failure.number();
        EXPECT_TRUE(failure.description().contains(text)) << failure.description().toStdString();
        return failure.number();
    }
    return 0;
}

/// The bytes of a file; "no file" where none can be read.
inline QByteArray ReadBytes(const QString& path) {
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArrayLiteral("no file");
}

/// Makes the file anew.
inline void WriteBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    EXPECT_TRUE(file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size()) << path.toStdString();
}

} // namespace test
