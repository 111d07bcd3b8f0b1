#pragma once

#include "platform/engine/Value.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Failure.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

namespace test {

inline QString OldFile(const QString& name) {
    return QStringLiteral(ZAVELIK_TEST_DATA "/jet/") + name;
}

inline QByteArray BytesOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

/// The rows that the sound files hold, by file and table.
inline QJsonObject ExpectedRows() {
    const QJsonDocument document = QJsonDocument::fromJson(BytesOf(OldFile(QStringLiteral("expected.json"))));
    EXPECT_TRUE(document.isObject());
    return document.object();
}

/// The wording of the list of expected rows: money and dates are texts there.
inline QJsonValue JsonOf(const engine::Value& value, engine::DataType type) {
    if (value.IsNull())
        return QJsonValue::Null;
    if (const auto* truth = value.As<bool>())
        return *truth;
    if (value.As<QString>())
        return value.Text();
    if (type == engine::DataType::Currency)
        return QString::number(value.Number(), 'f', 2);
    if (type == engine::DataType::Date)
        return runtime::DateFromNumber(value.Number()).toString(QStringLiteral("yyyy-MM-ddTHH:mm"));
    return value.Number();
}

/// The number of the failure that the action ends in; 0 if it ends well.
template <class Action>
int FailureNumber(Action action) {
    try {
        action();
    } catch (const runtime::Failure& failure) {
        EXPECT_FALSE(failure.description().isEmpty());
        return failure.number();
    }
    return 0;
}

} // namespace test
